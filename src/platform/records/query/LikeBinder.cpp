// SPDX-License-Identifier: Apache-2.0

// The members of ExpressionBinder that bind LIKE and the OR around it.

#include "platform/records/TextCodec.h"
#include "platform/records/query/ExpressionBinder.h"
#include "platform/records/query/StoredValues.h"

#include <QHash>

namespace dao::query
{

using jetsql::Expression;
using jetsql::Literal;
using jetsql::Operation;
using jetsql::Operator;

namespace
{

BoundExpression MakePattern(const QStringList& texts)
{
    return {BoundPattern{texts, std::make_shared<const jetsql::LikePattern>(texts)}, ValueType::Text};
}

/// The text of a LIKE's pattern where that is a constant text; null for anything else.
const QString* PlainPattern(const Expression& expression)
{
    const Operation* operation = std::get_if<Operation>(&expression.Node);
    if (operation == nullptr || operation->Kind != Operator::Like)
        return nullptr;
    const Literal* literal = std::get_if<Literal>(&operation->Operands[1].Node);
    if (literal == nullptr || literal->Value.typeId() != QMetaType::QString)
        return nullptr;
    return static_cast<const QString*>(literal->Value.constData());
}

/// Tells columns apart; a computed text is like no other.
QByteArray KeyOf(const BoundExpression& text, std::size_t number)
{
    if (const auto* column = std::get_if<BoundColumn>(&text.Node))
        return QByteArray::number(column->Source) + '.' + QByteArray::number(column->Column) + ',';
    return '#' + QByteArray::number(static_cast<qulonglong>(number)) + ',';
}

/// Texts that are held against one pattern.
struct TextsOfPattern
{
    QString Pattern;
    std::vector<BoundExpression> Texts{};
    QByteArray Key{}; ///< All the texts.
};

BoundExpression MakeLike(const QStringList& patterns, std::vector<BoundExpression> texts)
{
    BoundOperation like;
    like.Kind = Operator::Like;
    like.Operands.reserve(texts.size() + 1);
    like.Operands.push_back(MakePattern(patterns));
    std::move(texts.begin(), texts.end(), std::back_inserter(like.Operands));
    return {std::move(like), ValueType::Number};
}

/// Patterns that are held against the same texts become one.
std::vector<BoundExpression> JoinPatterns(std::vector<TextsOfPattern> likes)
{
    std::vector<QStringList> patterns;
    std::vector<std::vector<BoundExpression>> texts;
    QHash<QByteArray, std::size_t> places;
    for (TextsOfPattern& like : likes) {
        const auto known = places.constFind(like.Key);
        if (known != places.constEnd()) {
            patterns[*known].append(like.Pattern);
            continue;
        }
        places.insert(like.Key, texts.size());
        texts.push_back(std::move(like.Texts));
        patterns.push_back({like.Pattern});
    }
    std::vector<BoundExpression> joined;
    joined.reserve(texts.size());
    for (std::size_t i = 0; i < texts.size(); ++i)
        joined.push_back(MakeLike(patterns[i], std::move(texts[i])));
    return joined;
}

} // namespace

BoundExpression ExpressionBinder::BindOr(const Operands& operands)
{
    std::vector<BoundExpression> conditions;
    for (const Expression& operand : operands) {
        if (PlainPattern(operand) == nullptr)
            conditions.push_back(Condition(operand));
    }
    std::vector<BoundExpression> likes = BindPlainLikes(operands);
    std::move(likes.begin(), likes.end(), std::back_inserter(conditions));
    if (conditions.size() == 1)
        return std::move(conditions.front());
    return {BoundOperation{Operator::Or, std::move(conditions)}, ValueType::Number};
}

/// The operands of an OR that hold a text against a constant pattern. A search for some addresses in some columns
/// becomes one operation with all of both, so that each row's texts are fetched once.
std::vector<BoundExpression> ExpressionBinder::BindPlainLikes(const Operands& operands)
{
    std::vector<TextsOfPattern> likes;
    QHash<QString, std::size_t> places;
    std::size_t number = 0;
    for (const Expression& operand : operands) {
        const QString* pattern = PlainPattern(operand);
        if (pattern == nullptr)
            continue;
        BoundExpression text = TextToMatch(std::get<Operation>(operand.Node).Operands[0]);
        const auto known = places.constFind(*pattern);
        const std::size_t place = known == places.constEnd() ? likes.size() : *known;
        if (place == likes.size()) {
            places.insert(*pattern, place);
            likes.push_back({*pattern});
        }
        likes[place].Key += KeyOf(text, number++);
        likes[place].Texts.push_back(std::move(text));
    }
    return JoinPatterns(std::move(likes));
}

BoundExpression ExpressionBinder::BindLike(const Operation& operation)
{
    std::vector<BoundExpression> operands(2);
    operands[1] = TextToMatch(operation.Operands[0]);
    operands[0] = PatternOf(operation.Operands[1]);
    return {BoundOperation{operation.Kind, std::move(operands)}, ValueType::Number};
}

BoundExpression ExpressionBinder::TextToMatch(const Expression& expression)
{
    BoundExpression text = Value(expression);
    // A date has no one text form to match.
    if (text.Type == ValueType::Date)
        RaiseTypeMismatch(expression.Position);
    return text;
}

BoundExpression ExpressionBinder::PatternOf(const Expression& expression)
{
    BoundExpression pattern = TextToMatch(expression);
    const auto* constant = std::get_if<BoundConstant>(&pattern.Node);
    if (constant == nullptr || IsNull(constant->Value))
        return pattern;
    return MakePattern({TextFromUtf8(TextIn(AsText(constant->Value)))});
}

} // namespace dao::query
