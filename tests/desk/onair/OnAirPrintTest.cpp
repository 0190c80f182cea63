// SPDX-License-Identifier: Apache-2.0

// The running order on paper.

#include "OnAirPage.h"
#include "printing/PrintDialog.h"
#include "window/MainWindowTest.h"

#include <QComboBox>

namespace
{
OnAirEntry EntryOf(const char* from, const char* text)
{
    OnAirEntry entry;
    entry.Message = 1;
    entry.From = QString::fromUtf8(from);
    entry.Original = entry.Text = QString::fromUtf8(text);
    return entry;
}

class OnAirPrintTest : public MainWindowTest
{
};
} // namespace

TEST_F(OnAirPrintTest, EachEntryComesOnceInItsOrderAndWordsStayWords)
{
    const QString page = QStringLiteral("<p><ZRT_ONAIR_COUNT> at <ZRT_STATION_NAME></p><ZRT_ONAIR_REPEAT><p>"
                                        "<ZRT_ONAIR_NUMBER>-<ZRT_ONAIR_FROM>-<ZRT_ONAIR_TEXT>-<ZRT_WHAT></p>"
                                        "</ZRT_ONAIR_REPEAT>");
    const SafeDocument document = OnAirPage::Fill(
        page, {EntryOf("Ann", "<b>bold</b> <ZRT_ONAIR_FROM>"), EntryOf("Joe", "Second")}, QStringLiteral("Harbour FM"));
    EXPECT_TRUE(document.Html.contains(QStringLiteral("2 at Harbour FM"))) << document.Html.toStdString();
    EXPECT_TRUE(document.Html.contains(QStringLiteral("1-Ann-&lt;b&gt;bold&lt;/b&gt; &lt;ZRT_ONAIR_FROM&gt;-")))
        << document.Html.toStdString();
    EXPECT_LT(document.Html.indexOf(QStringLiteral("1-Ann")), document.Html.indexOf(QStringLiteral("2-Joe")));
}

TEST_F(OnAirPrintTest, TheWindowPrintsItThroughTheStationsTemplate)
{
    PrintJob job;
    job.Order = {EntryOf("Ann", "First"), EntryOf("Joe", "Second")};
    PrintDialog dialog(Station, *Settings, job);
    dialog.show();
    ASSERT_TRUE(WaitUntil([&] { return dialog.IsLaidOut(); }, 20000));
    EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Print running order"));
    const QList<QComboBox*> boxes = dialog.findChildren<QComboBox*>();
    EXPECT_TRUE(std::any_of(boxes.begin(), boxes.end(),
                            [](const QComboBox* box) { return box->currentText() == u"Running order"; }));
    dialog.close();
}
