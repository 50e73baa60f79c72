#pragma once

#include <veskrosterfiltersstack.h>

#include <QString>

// While it lives, a stack carries the sorting method it keeps in its file in
// place of the one it is sorted by. The two differ for a filter without a
// method of its own while it is current: making a filter current lends it the
// default method, in memory only. What is written and read back is the
// method of the file, so that such a filter goes on following the default.
class VeskStoredMethod
{
public:
    VeskStoredMethod(VeskRosterFiltersStack *stack, const QString &stored)
        : stack(stack)
        , inUse(stack->getSorter())
    {
        stack->setSorter(stored);
    }
    ~VeskStoredMethod() { stack->setSorter(inUse); }
    VeskStoredMethod(const VeskStoredMethod &) = delete;
    VeskStoredMethod &operator=(const VeskStoredMethod &) = delete;

private:
    VeskRosterFiltersStack *stack;
    const QString inUse;
};
