#pragma once

#include <QByteArray>
#include <QString>
#include <QVector>

// Writes indented JSON with keys in the order they are given, which
// QJsonDocument does not keep; fast enough for a million roster entries.
class VeskJsonWriter
{
public:
    void beginObject();
    void endObject();
    void beginArray();
    void endArray();

    void key(const char *name);
    void value(const QString &text);
    void value(const char *text);
    void value(int number);
    void value(bool flag);
    void null();

    // The finished document, ending with a newline.
    QByteArray toJson() const;

private:
    void beforeValue();
    void newline();
    void appendString(const QString &text);

    struct Level
    {
        bool object = false;
        int count = 0;
    };
    QByteArray out;
    QVector<Level> levels;
    bool afterKey = false;
};
