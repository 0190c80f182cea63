// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QString>

#include <ostream>

// GoogleTest finds these by name look-up and prints texts as people read them.

inline void PrintTo(const QString& text, std::ostream* out)
{
    *out << '"' << text.toStdString() << '"';
}

inline void PrintTo(const QByteArray& octets, std::ostream* out)
{
    *out << '"' << octets.toStdString() << '"';
}
