// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QString>

#include <vector>

/// A page for the parser, which takes its time character by character: each long run of plain words is replaced by a
/// mark of two characters, and put back into what the parser makes of it.
///
/// To the parser a mark is text like the words: no state in which it reads text, a comment or a script tells one from
/// the other. Where the words would have been names or values within a tag, or would have been left out, the mark does
/// not come back as text. IsComplete then says no, and the page has to be parsed as it stands.
class ShortMarkup
{
public:
    enum class Runs
    {
        Marked,
        Kept
    };

    /// markup outlives this object.
    ShortMarkup(const QString& markup, Runs runs);

    qsizetype Size() const { return Markup_.size(); }
    const QByteArray& Utf8() const { return Utf8_; }
    /// A text or comment of the parser's, with the words in the place of each mark.
    QString Restored(const char* text);
    bool HasMarks() const { return !Runs_.empty(); }
    /// Whether every mark has come back, and once.
    bool IsComplete() const { return !IsStrange_ && Left_ == 0; }

private:
    struct Run
    {
        qsizetype Start;
        qsizetype Size;
        bool IsBack;
    };

    void FindRuns();
    void AddRun(QStringView plain, qsizetype start);
    QString Shortened() const;
    QStringView TakeRun(QStringView mark);

    const QString& Markup_;
    QByteArray Utf8_;
    std::vector<Run> Runs_;
    std::size_t Left_ = 0;
    bool IsStrange_ = false;
};
