// SPDX-License-Identifier: Apache-2.0

// What a host may have rows show besides: marks, the whole of a text message, the whole width.

#include "messages/TextMessage.h"
#include "messageslist/FilledListTest.h"
#include "platform/widgets/Icons.h"
#include "platform/widgets/RowMark.h"
#include "platform/widgets/Twips.h"

#include <QHeaderView>
#include <QScrollBar>

namespace
{
const QString LongText = QStringLiteral("Please play something by the band that was on this morning, for my sister in "
                                        "Truro, who turns forty today and listens in the kitchen");

class RowMarksTest : public FilledListTest
{
protected:
    qint32 SaveText(const QString& words)
    {
        if (!Station->IsOpen())
            OpenStation();
        TextMessage text;
        text.From = QStringLiteral("07700 900123");
        text.Text = words;
        text.Received = Date(2026, 11, 20, 9, 5);
        const cMessagePtr message = ::MakeMessage(text);
        message->SetCategory(tmcInbox);
        EXPECT_TRUE(Station->SaveMessage(message));
        return message->Reference();
    }
    qint32 SaveWithFile(const QString& subject)
    {
        return Save(subject, [](cMessage& message) {
            message.SetCDOMessage(std::make_shared<cdo::Message>(
                QByteArray("Subject: files\r\nFrom: a@b.org\r\nMIME-Version: 1.0\r\n"
                           "Content-Type: multipart/mixed; boundary=x\r\n\r\n--x\r\n\r\nHello\r\n--x--\r\n")));
        });
    }
    int RowOf(qint32 reference) const { return static_cast<int>(List->References().indexOf(reference)) + 1; }
    QString Spoken(qint32 reference) const
    {
        return Grid->model()->index(RowOf(reference) - 1, 2).data(Qt::AccessibleTextRole).toString();
    }
    QString Text(qint32 reference) const { return Grid->TextMatrix(RowOf(reference), 2); }
    QStringList Lines(qint32 reference) const { return Text(reference).remove(QChar(0x200B)).split(u'\r'); }
    int Height(qint32 reference) const { return Grid->rowHeight(RowOf(reference) - 1); }
    QImage Image(qint32 reference) const
    {
        const QRect cell = Grid->visualRect(Grid->model()->index(RowOf(reference) - 1, 2));
        return Grid->viewport()->grab(cell).toImage();
    }
    void Widen(int width)
    {
        List->window()->resize(width, 700);
        List->resize(width, 700);
        QTest::qWait(0);
        QCoreApplication::processEvents();
    }
};
} // namespace

TEST_F(RowMarksTest, WithoutAHostThatWantsThemRowsShowNoMarksAndTwoLines)
{
    const qint32 text = SaveText(LongText);
    const qint32 mail = SaveWithFile(QStringLiteral("files"));
    Attach();
    EXPECT_EQ(Height(text), Height(mail));
    EXPECT_EQ(Lines(text).size(), 2);
    EXPECT_FALSE(Spoken(mail).contains(u"attachments"));
    EXPECT_FALSE(Spoken(mail).contains(u"mail"));
}

TEST_F(RowMarksTest, KindAttachmentsPriorityAndWhatTheHostKnowsAreShownAndSpoken)
{
    const qint32 text = SaveText(QStringLiteral("Short"));
    const qint32 files = SaveWithFile(QStringLiteral("files"));
    const qint32 urgent = Save(QStringLiteral("Fire"), [](cMessage& message) { message.SetPriority(1); });
    const qint32 low = Save(QStringLiteral("Later"), [](cMessage& message) { message.SetPriority(-1); });
    QList<qint32> known;
    List->SetShowsMarks([&](qint32 reference) {
        return known.contains(reference)
                   ? QList<RowMark>{{Icons::Get(QStringLiteral("onair")), QStringLiteral("On the running order")}}
                   : QList<RowMark>();
    });
    Attach();
    EXPECT_TRUE(Spoken(files).contains(u"with attachments, mail")) << qPrintable(Spoken(files));
    EXPECT_TRUE(Spoken(low).contains(u"low priority, mail"));
    EXPECT_TRUE(Spoken(urgent).contains(u"urgent"));
    EXPECT_EQ(Spoken(urgent).count(QStringLiteral("urgent")), 1);
    EXPECT_EQ(Spoken(text).count(QStringLiteral("text message")), 1);
    EXPECT_FALSE(Spoken(urgent).contains(u"running order"));
    const QImage before = Image(urgent);
    known = {urgent};
    List->ShowRowNotes();
    EXPECT_TRUE(Spoken(urgent).contains(u"On the running order"));
    EXPECT_NE(Image(urgent), before);
    // It follows what another computer changes.
    const cMessagePtr changed = OtherComputer().GetMessage(low);
    changed->SetPriority(0);
    EXPECT_TRUE(OtherComputer().SaveMessage(changed));
    Now.Advance(1);
    Tick();
    EXPECT_FALSE(Spoken(low).contains(u"low priority"));
}

TEST_F(RowMarksTest, ATextMessageStandsWholeInUpToThreeLinesAndIsReadInOne)
{
    const qint32 whole = SaveText(QStringLiteral("one two three four five six seven eight nine ten eleven twelve"));
    const qint32 brief = SaveText(QStringLiteral("Hi"));
    const qint32 endless = SaveText(LongText + u' ' + LongText + u' ' + LongText + u' ' + LongText);
    const qint32 mail = Save(LongText);
    List->SetTextLines(3);
    List->SetFillsWidth(true);
    Attach();
    const int line = Grid->fontMetrics().lineSpacing();
    for (const int width : {420, 600, 500}) {
        Widen(width);
        const QStringList lines = Lines(whole);
        EXPECT_EQ(lines.mid(0, lines.size() - 1).join(u' '),
                  QStringLiteral("one two three four five six seven eight nine ten eleven twelve"))
            << width;
        for (const QString& words : lines)
            EXPECT_LE(Grid->fontMetrics().horizontalAdvance(words), Grid->viewport()->width()) << qPrintable(words);
        EXPECT_NEAR(Height(whole), Height(brief) + (static_cast<int>(lines.size()) - 2) * line, 1);
        EXPECT_EQ(Lines(endless).size(), 4);
        EXPECT_TRUE(Lines(endless).at(2).endsWith(QChar(0x2026)));
        EXPECT_NEAR(Height(endless), Height(brief) + 2 * line, 1);
        EXPECT_EQ(Height(mail), Height(brief));
    }
    EXPECT_TRUE(
        Spoken(whole).contains(QStringLiteral("one two three four five six seven eight nine ten eleven twelve, ")));
}

TEST_F(RowMarksTest, ATextThatItsMailFoldsHasTheHeightOfItsLinesAtEveryWidth)
{
    // Longer than a line of a mail's header, in which it stands with breaks between its words.
    const qint32 folded =
        SaveText(QStringLiteral("The ferry came in at nine this morning with the whole of the band on "
                                "deck, and they played as far as the harbour wall"));
    const qint32 brief = SaveText(QStringLiteral("Hi"));
    List->SetTextLines(3);
    List->SetFillsWidth(true);
    Attach();
    ASSERT_TRUE(Station->GetMessage(folded)->CDOMessage()->Octets().contains("\r\n "));
    const int line = Grid->fontMetrics().lineSpacing();
    QSet<qsizetype> seen;
    for (int width = 420; width < 1700; width += 40) {
        Widen(width);
        const qsizetype lines = Lines(folded).size() - 1;
        EXPECT_NEAR(Height(folded), Height(brief) + (static_cast<int>(lines) - 1) * line, 1) << width;
        seen.insert(lines);
    }
    EXPECT_EQ(seen, (QSet<qsizetype>{1, 2, 3}));
}

TEST_F(RowMarksTest, RowsOfOneLineFillTheWidthAsWellWhateverItIs)
{
    const qint32 mail = Save(QStringLiteral("Short"));
    List->SetDoubleHeightRows(false);
    List->SetFillsWidth(true);
    Attach();
    QList<int> subjects;
    for (const int width : {420, 600, 900}) {
        Widen(width);
        EXPECT_NEAR(Grid->horizontalHeader()->length(), Grid->viewport()->width(), 2) << width;
        EXPECT_FALSE(Grid->horizontalScrollBar()->isVisible());
        EXPECT_EQ(Lines(mail).size(), 1);
        subjects.append(Grid->columnWidth(2));
    }
    EXPECT_LT(subjects.at(0), subjects.at(1));
    EXPECT_LT(subjects.at(1), subjects.at(2));
}

TEST_F(RowMarksTest, RowsKeepTheirHeightsThroughAnotherThemeAndFont)
{
    const qint32 text = SaveText(LongText);
    const qint32 brief = SaveText(QStringLiteral("Hi"));
    List->SetTextLines(3);
    List->SetFillsWidth(true);
    Attach();
    Widen(460);
    const int before = Height(text);
    ASSERT_GT(before, Height(brief));
    QEvent change(QEvent::StyleChange);
    QCoreApplication::sendEvent(List.get(), &change);
    EXPECT_EQ(Height(text), before);
    QFont larger = List->Font();
    larger.setPointSizeF(larger.pointSizeF() * 1.5);
    List->SetFont(larger);
    Widen(461);
    EXPECT_NEAR(Height(text), Height(brief) + 2 * Grid->fontMetrics().lineSpacing(), 1);
    EXPECT_EQ(Lines(text).size(), 4);
}

TEST_F(RowMarksTest, NarrowerRowsAreHigherAndWiderOnesLowerAndTheFirstInViewStays)
{
    QList<qint32> texts;
    for (int i = 0; i < 60; ++i)
        texts.append(SaveText(QString::number(i) + u' ' + LongText));
    List->SetTextLines(3);
    List->SetFillsWidth(true);
    Attach();
    Widen(1400);
    const int high = Height(texts.at(0));
    Grid->SetTopRow(30);
    Widen(460);
    EXPECT_GT(Height(texts.at(0)), high);
    EXPECT_EQ(Grid->TopRow(), 30);
    EXPECT_EQ(Grid->verticalHeader()->length(), 60 * Height(texts.at(0)));
    EXPECT_EQ(Grid->horizontalScrollBar()->maximum(), 0);
    Widen(1400);
    EXPECT_EQ(Height(texts.at(0)), high);
    EXPECT_EQ(Grid->TopRow(), 30);
}

TEST_F(RowMarksTest, KeysMouseFindAndSelectionWorkOverRowsOfSeveralHeights)
{
    QList<qint32> all;
    for (int i = 0; i < 80; ++i)
        all.append(i % 3 == 0 ? SaveText(QString::number(i) + u' ' + LongText)
                              : SaveText(QStringLiteral("Short %1").arg(i)));
    List->SetTextLines(3);
    List->SetFillsWidth(true);
    Attach();
    Widen(460);
    const QList<qint32> order = List->References();
    Grid->setFocus();
    QTest::keyClick(Grid, Qt::Key_Home);
    EXPECT_EQ(List->SelectedReference(), order.first());
    int pages = 0;
    for (; List->SelectedReference() != order.last() && pages < 40; ++pages) {
        const int before = Grid->Row();
        QTest::keyClick(Grid, Qt::Key_PageDown);
        EXPECT_GT(Grid->Row(), before);
        EXPECT_TRUE(Grid->viewport()->rect().intersects(Grid->visualRect(Grid->currentIndex())));
    }
    EXPECT_LT(pages, 40);
    for (int i = 0; i <= pages; ++i)
        QTest::keyClick(Grid, Qt::Key_PageUp);
    EXPECT_EQ(Grid->Row(), 1);
    for (int row = 1; row <= 6; ++row) {
        ClickRow(row);
        EXPECT_EQ(List->SelectedReference(), order.at(row - 1));
    }
    Find(QStringLiteral("Short 79"));
    EXPECT_EQ(List->NumberItems(), 1);
    EXPECT_EQ(Grid->rowHeight(0), Grid->verticalHeader()->length());
}

TEST_F(RowMarksTest, RowsThatComeLaterPushTheOthersByTheirOwnHeight)
{
    SaveText(QStringLiteral("First"));
    List->SetTextLines(3);
    List->SetFillsWidth(true);
    List->SetSelectsByReference(true);
    Attach();
    Widen(460);
    Now.Advance(1);
    TextMessage text;
    text.From = QStringLiteral("07700 900124");
    text.Text = LongText;
    const cMessagePtr message = ::MakeMessage(text);
    message->SetCategory(tmcInbox);
    EXPECT_TRUE(OtherComputer().SaveMessage(message));
    Tick();
    ASSERT_EQ(List->NumberItems(), 2);
    EXPECT_EQ(Lines(message->Reference()).size(), 4);
    EXPECT_GT(Height(message->Reference()), Grid->rowHeight(RowOf(List->References().at(0)) == 1 ? 1 : 0) - 1);
    EXPECT_EQ(Grid->verticalHeader()->length(), Grid->rowHeight(0) + Grid->rowHeight(1));
}

TEST_F(RowMarksTest, AScrollBarCoversNoTextAndAWiderListShowsMore)
{
    const QString subject = QStringLiteral("A subject that is a good deal longer than a narrow list is wide, end");
    const qint32 mail = Save(subject);
    for (int i = 0; i < 60; ++i)
        Save(QString::number(i));
    List->SetFillsWidth(true);
    Attach();
    Widen(460);
    Grid->grab();
    EXPECT_TRUE(Lines(mail).first().endsWith(QChar(0x2026)));
    EXPECT_LE(Grid->columnViewportPosition(2) + Grid->columnWidth(2), Grid->viewport()->width());
    EXPECT_GE(Grid->columnViewportPosition(2) + Grid->columnWidth(2), Grid->viewport()->width() - 2);
    Widen(1400);
    Grid->grab();
    EXPECT_EQ(Lines(mail).first(), subject) << "a row that was seen before";
}
