// SPDX-License-Identifier: Apache-2.0

// The members of ExpressionRenderer that render LIKE.

#include "platform/records/engines/sqlite/ExpressionRenderer.h"

namespace dao::sqlite
{

using jetsql::Expression;
using jetsql::Literal;
using jetsql::Operation;

namespace
{
// SQLite's functions take at most 127 arguments.
constexpr std::size_t maximumLikeTexts = 100;
} // namespace

/// The operands of an OR that hold a text against a constant pattern. A search for some addresses in some columns
/// becomes one call with all of both, so that each row's texts are fetched once.
void ExpressionRenderer::RenderPlainLikes(const Operands& operands, std::vector<Piece>& pieces)
{
    struct TextsOfPattern
    {
        QString Pattern;
        std::vector<Piece> Texts;
        QByteArray Key; ///< All the texts.
    };
    std::vector<TextsOfPattern> byPattern;
    QHash<QString, std::size_t> placeOf;
    for (const Expression& operand : operands) {
        const QString* pattern = PlainPattern(operand);
        if (pattern == nullptr)
            continue;
        Piece text = TextToMatch(std::get<Operation>(operand.Node).Operands[0]);
        const auto known = placeOf.constFind(*pattern);
        const bool isNew = known == placeOf.constEnd() || byPattern[*known].Texts.size() >= maximumLikeTexts;
        const std::size_t place = isNew ? byPattern.size() : *known;
        if (isNew) {
            placeOf.insert(*pattern, place);
            byPattern.push_back({*pattern, {}, {}});
        }
        byPattern[place].Key += text.Text + ',';
        byPattern[place].Texts.push_back(std::move(text));
    }
    std::vector<QStringList> patternsOfTexts;
    std::vector<const TextsOfPattern*> texts;
    QHash<QByteArray, std::size_t> placeOfKey;
    for (const TextsOfPattern& one : byPattern) {
        const auto known = placeOfKey.constFind(one.Key);
        if (known != placeOfKey.constEnd()) {
            patternsOfTexts[*known].append(one.Pattern);
            continue;
        }
        placeOfKey.insert(one.Key, texts.size());
        texts.push_back(&one);
        patternsOfTexts.push_back({one.Pattern});
    }
    for (std::size_t i = 0; i < texts.size(); ++i)
        pieces.push_back(LikeCall(BindPatterns(patternsOfTexts[i]), texts[i]->Texts));
}

Piece ExpressionRenderer::RenderLike(const Expression& text, const Expression& pattern)
{
    const Piece texts = TextToMatch(text);
    return LikeCall(PatternOf(pattern), {texts});
}

Piece ExpressionRenderer::TextToMatch(const Expression& expression)
{
    Piece text = Value(expression);
    // A date has no one text form to match.
    if (text.Type == ValueType::Date)
        RaiseTypeMismatch(expression.Position);
    return text;
}

Piece ExpressionRenderer::PatternOf(const Expression& expression)
{
    const Literal* literal = AsLiteral(expression);
    if (literal == nullptr)
        return TextToMatch(expression);
    const ValueType type = TypeOfLiteral(*literal);
    if (type == ValueType::Date)
        RaiseTypeMismatch(expression.Position);
    if (type == ValueType::Unknown)
        return Bind(QVariant(), type);
    return BindPatterns({type == ValueType::Text ? literal->Value.toString() : NumberText(literal->Value)});
}

Piece ExpressionRenderer::LikeCall(const Piece& pattern, const std::vector<Piece>& texts)
{
    Piece result;
    result.Text = "jet_like(" + pattern.Text;
    Adopt(result, pattern, 5);
    for (const Piece& text : texts) {
        result.Text += ", " + text.Text;
        Adopt(result, text, 5);
    }
    result.Text += ')';
    return AsTruth(result);
}

Piece ExpressionRenderer::BindPatterns(const QStringList& patterns)
{
    Piece piece;
    piece.Type = ValueType::Text;
    QByteArray& place = Patterns_[patterns];
    if (place.isEmpty()) {
        Result_.Bindings.emplace_back(std::make_shared<const jetsql::LikePattern>(patterns));
        place = '?' + QByteArray::number(static_cast<qlonglong>(Result_.Bindings.size()));
    }
    piece.Text = place;
    return piece;
}

} // namespace dao::sqlite
