#pragma once

#include <QKeySequence>
#include <QString>

class QLabel;
class QPushButton;
class QWidget;

// What every editor of this library does alike with its controls.
namespace VeskWidgetSupport {

// A button that the keyboard does not press by Return (Return belongs to the
// dialog around the editor), with an extra shortcut active anywhere in the
// window, shown in its tool tip, and an accessible name.
QPushButton *button(const QString &text, const QKeySequence &shortcut, QWidget *parent);
// A label that focuses `buddy` by its mnemonic and names it for assistive tools.
QLabel *label(const QString &text, QWidget *buddy, QWidget *parent);
// A text as a screen reader says it: without the mnemonic's ampersand.
QString spoken(const QString &text);

} // namespace VeskWidgetSupport
