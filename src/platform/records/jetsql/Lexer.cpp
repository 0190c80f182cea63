// SPDX-License-Identifier: Apache-2.0
#include "platform/records/jetsql/Lexer.h"

#include "platform/records/Error.h"

namespace dao::jetsql
{
namespace
{
bool IsDigit(QChar character)
{
    return character >= u'0' && character <= u'9';
}

bool BeginsWord(QChar character)
{
    // Half of a surrogate pair counts as a letter, so that names beyond the first plane need no brackets.
    return character.isLetter() || character == u'_' || character.isSurrogate();
}

bool ContinuesWord(QChar character)
{
    return BeginsWord(character) || character.isDigit() || character.isMark();
}

class Lexer
{
public:
    explicit Lexer(QStringView text) : Text_(text) {}

    std::vector<Token> ReadAll()
    {
        std::vector<Token> tokens;
        do {
            SkipSpace();
            tokens.push_back(Read());
        } while (tokens.back().TokenKind != Token::Kind::End);
        return tokens;
    }

private:
    QChar At(qsizetype position) const { return position < Text_.size() ? Text_[position] : QChar(); }

    void SkipSpace()
    {
        while (Next_ < Text_.size() && Text_[Next_].isSpace())
            ++Next_;
    }

    Token Read()
    {
        if (Next_ >= Text_.size())
            return {Token::Kind::End, QString(), Text_.size()};
        const QChar first = Text_[Next_];
        if (first == u'"' || first == u'\'')
            return ReadQuoted(first);
        if (first == u'[')
            return ReadEnclosed(Token::Kind::BracketedName, u']', QStringLiteral("the name's closing ] is missing"));
        if (first == u'#')
            return ReadEnclosed(Token::Kind::Date, u'#', QStringLiteral("the date's closing # is missing"));
        if (IsDigit(first) || (first == u'.' && IsDigit(At(Next_ + 1))))
            return ReadNumber();
        if (BeginsWord(first))
            return ReadWord();
        return ReadSymbol();
    }

    Token ReadQuoted(QChar quote)
    {
        const qsizetype start = Next_++;
        QString content;
        while (Next_ < Text_.size()) {
            const QChar character = Text_[Next_++];
            if (character != quote) {
                content.append(character);
            } else if (At(Next_) == quote) {
                content.append(quote);
                ++Next_;
            } else {
                return {Token::Kind::Text, content, start};
            }
        }
        RaiseSyntaxError(QStringLiteral("the text's closing quote is missing"), Text_, start);
    }

    Token ReadEnclosed(Token::Kind kind, QChar closing, const QString& complaint)
    {
        const qsizetype start = Next_;
        const qsizetype end = Text_.indexOf(closing, start + 1);
        if (end < 0)
            RaiseSyntaxError(complaint, Text_, start);
        const QStringView content = Text_.sliced(start + 1, end - start - 1);
        if (content.trimmed().isEmpty())
            RaiseSyntaxError(QStringLiteral("there is nothing between the brackets"), Text_, start);
        if (content.contains(QChar(u'\0')))
            RaiseSyntaxError(QStringLiteral("a null character cannot be part of a name or date"), Text_, start);
        Next_ = end + 1;
        return {kind, content.toString(), start};
    }

    Token ReadNumber()
    {
        const qsizetype start = Next_;
        SkipDigits();
        if (At(Next_) == u'.') {
            ++Next_;
            SkipDigits();
        }
        if (At(Next_).toUpper() == u'E') {
            const qsizetype sign = At(Next_ + 1) == u'+' || At(Next_ + 1) == u'-' ? 1 : 0;
            if (IsDigit(At(Next_ + 1 + sign))) {
                Next_ += 1 + sign;
                SkipDigits();
            }
        }
        return {Token::Kind::Number, Text_.sliced(start, Next_ - start).toString(), start};
    }

    void SkipDigits()
    {
        while (IsDigit(At(Next_)))
            ++Next_;
    }

    Token ReadWord()
    {
        const qsizetype start = Next_;
        while (Next_ < Text_.size() && ContinuesWord(Text_[Next_]))
            ++Next_;
        return {Token::Kind::Word, Text_.sliced(start, Next_ - start).toString(), start};
    }

    Token ReadSymbol()
    {
        const qsizetype start = Next_;
        const QStringView pair = Text_.sliced(start, qMin<qsizetype>(2, Text_.size() - start));
        if (pair == u"<>" || pair == u"<=" || pair == u">=") {
            Next_ += 2;
            return {Token::Kind::Symbol, pair.toString(), start};
        }
        if (!QStringView(u"(),;.!=<>+-*/&").contains(Text_[start]))
            RaiseSyntaxError(QStringLiteral("this character has no meaning here"), Text_, start);
        ++Next_;
        return {Token::Kind::Symbol, QString(Text_[start]), start};
    }

    QStringView Text_;
    qsizetype Next_ = 0;
};
} // namespace

std::vector<Token> Tokenise(QStringView text)
{
    return Lexer(text).ReadAll();
}

void RaiseSyntaxError(const QString& reason, QStringView text, qsizetype position)
{
    constexpr qsizetype shown = 40;
    QString place;
    if (position >= text.size())
        place = QStringLiteral("at the end");
    else
        place = QStringLiteral("at character %1, near '%2'").arg(position + 1).arg(text.sliced(position).left(shown));
    throw Error(errSyntax, QStringLiteral("Syntax error in the query: ") + reason + QStringLiteral(", ") + place +
                               QStringLiteral("."));
}

} // namespace dao::jetsql
