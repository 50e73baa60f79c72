#pragma once

// The entry kind codes that VeskBuddy::getType() answers. The library keeps
// its own names for them rather than relying on constants in host headers.
namespace VeskEntryKind {
enum : int { Group = 1, Contact = 3, Temporary = 5 };
} // namespace VeskEntryKind
