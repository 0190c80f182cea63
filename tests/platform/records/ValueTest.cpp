// SPDX-License-Identifier: Apache-2.0
#include "platform/records/RecordsFixture.h"

#include <cmath>
#include <limits>

using namespace dao;

namespace
{

class Values : public RecordsFixture
{
protected:
    Values() { MakeMessages(); }

    /// Stores a value in a new row and reads it back through another recordset.
    QVariant RoundTrip(const QString& field, const QVariant& value)
    {
        const auto messages = OpenMessages();
        messages->AddNew();
        const int reference = messages->Collect(QStringLiteral("Reference")).toInt();
        messages->SetCollect(field, value);
        messages->Update();
        const auto again = OpenMessages();
        again->Seek(SeekComparison::Equal, {reference});
        return again->Collect(field);
    }
    int Refusal(const QString& field, const QVariant& value)
    {
        const auto messages = OpenMessages();
        messages->AddNew();
        return ErrorNumberOf([&] { messages->SetCollect(field, value); });
    }
};

TEST_P(Values, ALargeMemoIsTheSameAsTextAndAsOctets)
{
    // Octets alone, octets whose text is no UTF-8 to somebody else, and characters that are no octets.
    const QByteArray octets = QByteArray("\xC3\xA4 \xFF\x80\xC2 a ").repeated(200'000);
    for (const QString& text : {QString::fromLatin1(octets), QString::fromLatin1(octets) + QChar(0x20AC),
                                QString::fromLatin1(octets).left(1'500'000) + QChar(0xD800)}) {
        EXPECT_TRUE(RoundTrip(QStringLiteral("Message"), text).toString() == text);
        const auto rows = OpenMessages();
        rows->MoveLast();
        const Field& field = rows->Fields().Item(QStringLiteral("Message"));
        if (text.size() == octets.size())
            EXPECT_TRUE(field.Octets() == octets && field.Octets(MemoTrust::AsStored) == octets);
        else
            EXPECT_EQ(ErrorNumberOf([&] { static_cast<void>(field.Octets()); }), errTypeMismatch);
    }
}

TEST_P(Values, NumbersKeepTheirTypeAndRange)
{
    EXPECT_EQ(RoundTrip(QStringLiteral("Category"), -32768), QVariant(-32768));
    EXPECT_EQ(Refusal(QStringLiteral("Category"), 32768), errOverflow);
    EXPECT_EQ(RoundTrip(QStringLiteral("Priority"), std::numeric_limits<qint32>::min()).toInt(),
              std::numeric_limits<qint32>::min());
    EXPECT_EQ(Refusal(QStringLiteral("Priority"), Q_INT64_C(2147483648)), errOverflow);
    EXPECT_EQ(Refusal(QStringLiteral("Priority"), 1e300), errOverflow);
    EXPECT_EQ(RoundTrip(QStringLiteral("Small"), 255).toInt(), 255);
    EXPECT_EQ(Refusal(QStringLiteral("Small"), -1), errOverflow);
    EXPECT_EQ(RoundTrip(QStringLiteral("Sum"), 0.1).toDouble(), 0.1);
    EXPECT_EQ(RoundTrip(QStringLiteral("Sum"), 5).typeId(), static_cast<int>(QMetaType::Double));
    EXPECT_EQ(Refusal(QStringLiteral("Sum"), std::nan("")), errOverflow);
}

TEST_P(Values, ASingleIsRoundedToAFloat)
{
    EXPECT_EQ(RoundTrip(QStringLiteral("Rate"), 1.071).toDouble(), static_cast<double>(1.071F));
    EXPECT_EQ(Refusal(QStringLiteral("Rate"), 1e39), errOverflow);
}

TEST_P(Values, WholeNumbersRoundHalvesToEven)
{
    EXPECT_EQ(RoundTrip(QStringLiteral("Priority"), 2.5).toInt(), 2);
    EXPECT_EQ(RoundTrip(QStringLiteral("Priority"), 3.5).toInt(), 4);
    EXPECT_EQ(RoundTrip(QStringLiteral("Priority"), -2.7).toInt(), -3);
}

TEST_P(Values, TextsThatAreNumbersAreConvertedAndOthersRefused)
{
    EXPECT_EQ(RoundTrip(QStringLiteral("Priority"), QStringLiteral(" 12 ")).toInt(), 12);
    EXPECT_EQ(Refusal(QStringLiteral("Priority"), QStringLiteral("abc")), errDataTypeConversion);
    EXPECT_EQ(Refusal(QStringLiteral("Priority"), QStringLiteral("")), errDataTypeConversion);
    EXPECT_EQ(Refusal(QStringLiteral("Priority"), QVariant(QVariantList{1})), errDataTypeConversion);
    EXPECT_EQ(RoundTrip(QStringLiteral("Subject"), 12).toString(), QStringLiteral("12"));
    EXPECT_EQ(RoundTrip(QStringLiteral("Subject"), 1.5).toString(), QStringLiteral("1.5"));
}

TEST_P(Values, TruthIsMinusOneInANumber)
{
    EXPECT_EQ(RoundTrip(QStringLiteral("Category"), true).toInt(), -1);
    EXPECT_EQ(RoundTrip(QStringLiteral("Done"), true), QVariant(true));
    EXPECT_EQ(RoundTrip(QStringLiteral("Done"), 2), QVariant(true));
    EXPECT_EQ(RoundTrip(QStringLiteral("Done"), QStringLiteral("False")), QVariant(false));
}

TEST_P(Values, DatesAreDayNumbers)
{
    EXPECT_EQ(RoundTrip(QStringLiteral("Sent"), 45000.75).toDouble(), 45000.75);
    EXPECT_EQ(RoundTrip(QStringLiteral("Sent"), QDateTime(QDate(1900, 1, 1), QTime(12, 0), Qt::UTC)).toDouble(), 2.5);
    EXPECT_EQ(Refusal(QStringLiteral("Sent"), 2958466.0), errOverflow);
}

TEST_P(Values, ATextFillsItsFieldToTheLastCharacter)
{
    const QString full(255, QChar(u'é'));
    EXPECT_EQ(RoundTrip(QStringLiteral("Subject"), full).toString(), full);
    EXPECT_EQ(Refusal(QStringLiteral("Subject"), full + QLatin1Char('x')), errFieldTooSmall);
}

TEST_P(Values, ARefusedValueLeavesTheBufferAsItWas)
{
    const auto messages = OpenMessages();
    messages->AddNew();
    messages->SetCollect(QStringLiteral("Category"), 4);
    EXPECT_EQ(ErrorNumberOf([&] { messages->SetCollect(QStringLiteral("Category"), 99999); }), errOverflow);
    EXPECT_EQ(messages->Collect(QStringLiteral("Category")).toInt(), 4);
}

TEST_P(Values, EveryTextComesBackAsItWas)
{
    const QString zero = QStringLiteral("a") + QChar(u'\0') + QStringLiteral("b");
    const QString halves = QStringLiteral("x") + QChar(0xD83D) + QStringLiteral("y") + QChar(0xDE00);
    const QString pair = QStringLiteral("😀") + QChar(0xDE00);
    for (const QString& text : {zero, halves, pair, QStringLiteral("plain"), QStringLiteral("Ελλάδα 日本")}) {
        EXPECT_EQ(RoundTrip(QStringLiteral("Subject"), text).toString(), text);
        EXPECT_EQ(RoundTrip(QStringLiteral("Message"), text).toString(), text);
    }
}

TEST_P(Values, AnEmptyTextIsNullWhereTheFieldDoesNotTakeIt)
{
    auto strict = std::make_unique<Field>(QStringLiteral("Strict"), dbText, 10);
    auto strictMemo = std::make_unique<Field>(QStringLiteral("StrictMemo"), dbMemo, 0);
    Db().TableDefs().Item(QStringLiteral("Messages")).Fields().Append(std::move(strict));
    Db().TableDefs().Item(QStringLiteral("Messages")).Fields().Append(std::move(strictMemo));
    EXPECT_FALSE(RoundTrip(QStringLiteral("Strict"), QString()).isValid());
    EXPECT_FALSE(RoundTrip(QStringLiteral("StrictMemo"), QStringLiteral("")).isValid());
    const QVariant subject = RoundTrip(QStringLiteral("Subject"), QStringLiteral(""));
    EXPECT_TRUE(subject.isValid());
    EXPECT_EQ(subject.toString(), QString());
    EXPECT_TRUE(RoundTrip(QStringLiteral("Message"), QStringLiteral("")).isValid());
}

TEST_P(Values, OctetsAndTextAreTheSameValue)
{
    QByteArray all;
    for (int i = 0; i < 256; ++i)
        all.append(static_cast<char>(i));
    const auto messages = OpenMessages();
    messages->AddNew();
    Field& memo = messages->Fields().Item(QStringLiteral("Message"));
    memo.SetOctets(all);
    EXPECT_EQ(memo.Octets(), all);
    messages->Update();
    messages->MoveFirst();
    EXPECT_EQ(memo.Octets(), all);
    EXPECT_EQ(memo.Value().toString(), QString::fromLatin1(all));
    messages->Edit();
    memo.SetOctets(QByteArray());
    messages->Update();
    EXPECT_FALSE(memo.Value().isValid());
    messages->Edit();
    memo.SetOctets(QByteArrayLiteral(""));
    messages->Update();
    EXPECT_TRUE(memo.Value().isValid());
    EXPECT_FALSE(memo.Octets().isNull());
}

TEST_P(Values, OctetsRefuseCharactersAboveTheFirst256)
{
    AddMessage(QStringLiteral("a"), QStringLiteral("Ωmega"));
    const auto messages = OpenMessages();
    EXPECT_EQ(ErrorNumberOf([&] { messages->Fields().Item(QStringLiteral("Message")).Octets(); }), errTypeMismatch);
}

TEST_P(Values, TheCounterCannotBeSet)
{
    EXPECT_EQ(Refusal(QStringLiteral("Reference"), 5), errNotSupported);
}

TEST_P(Values, ADefinitionHasNoValue)
{
    Field& field = Db().TableDefs().Item(QStringLiteral("Messages")).Fields().Item(0);
    EXPECT_EQ(ErrorNumberOf([&] { field.Value(); }), errObjectInvalid);
}

INSTANTIATE_FOR_ENGINES(Values);

} // namespace
