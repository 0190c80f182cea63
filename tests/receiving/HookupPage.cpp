// SPDX-License-Identifier: Apache-2.0
#include "HookupPage.h"

#include <QRegularExpression>

namespace
{
/// The file that the words before a block name for it; empty when they name none.
QString FileIn(const QString& words)
{
    static const QRegularExpression file(QStringLiteral("(?:In|this as|it as) `(/[^`]+)`"));
    QString name;
    auto matches = file.globalMatch(words);
    while (matches.hasNext())
        name = matches.next().captured(1);
    return name;
}

/// A line of a crontab begins with its times.
bool IsCrontab(const QString& block)
{
    static const QRegularExpression times(QStringLiteral("^(MAILTO=|\\S+ \\* \\* \\* \\* )"));
    return times.match(block).hasMatch();
}

QString InstructionOf(const QString& words, const QString& language, const QString& block)
{
    const QString file = FileIn(words);
    if (!file.isEmpty()) {
        const QString folder = file.section(u'/', 0, -2);
        const QString mode =
            block.startsWith(QStringLiteral("#!")) ? QStringLiteral("chmod 0755 %1\n").arg(file) : QString();
        return QStringLiteral("mkdir -p %1\ncat >>%2 <<'END-OF-BLOCK'\n%3END-OF-BLOCK\n%4")
            .arg(folder, file, block, mode);
    }
    return language == QStringLiteral("sh") ? block : QString();
}
} // namespace

QString HookupPage::Section(const QString& heading) const
{
    const QString begin = QStringLiteral("\n## %1\n").arg(heading);
    const qsizetype from = Text_.indexOf(begin);
    if (from < 0)
        return QString();
    const qsizetype to = Text_.indexOf(QStringLiteral("\n## "), from + begin.size());
    return Text_.mid(from, to < 0 ? -1 : to - from);
}

QString HookupPage::Instructions(const QString& heading) const
{
    // Words, language, block, words, ...
    static const QRegularExpression fence(QStringLiteral("^```([a-z]*)\\n"), QRegularExpression::MultilineOption);
    QString section = Section(heading);
    QString all;
    for (;;) {
        const auto begin = fence.match(section);
        if (!begin.hasMatch())
            return all;
        const qsizetype end = section.indexOf(QStringLiteral("\n```\n"), begin.capturedEnd());
        if (end < 0)
            return QString();
        const QString block = section.mid(begin.capturedEnd(), end + 1 - begin.capturedEnd());
        if (!IsCrontab(block)) {
            const QString one = InstructionOf(section.left(begin.capturedStart()), begin.captured(1), block);
            if (one.isEmpty())
                return QString();
            all += one;
        }
        section = section.mid(end + 5);
    }
}
