#pragma once

// Keys go where a person's would: to the widget that has the focus.

#include <QApplication>
#include <QString>
#include <QTest>
#include <QWidget>

namespace VeskKeys {

inline void keyTo(QWidget *target, int key, Qt::KeyboardModifiers modifiers)
{
    QVERIFY2(target, qPrintable(QString::number(key)));
    QTest::keyClick(target, Qt::Key(key), modifiers);
}

// To the focus widget; a key with nowhere to go fails the test.
inline void key(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    keyTo(QApplication::focusWidget(), key, modifiers);
}

// To the focus widget, or to the window while none has the focus: a bare
// widget under test starts without one, as a window's shortcuts do not.
inline void keyOrWindow(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    QWidget *target = QApplication::focusWidget();
    keyTo(target ? target : QApplication::activeWindow(), key, modifiers);
}

inline void type(const QString &text)
{
    QTest::keyClicks(QApplication::focusWidget(), text);
}

} // namespace VeskKeys
