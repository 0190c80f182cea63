// SPDX-License-Identifier: Apache-2.0
#include "messages/controls/uMessageBasic.h"

#include "platform/widgets/Contrast.h"
#include "platform/widgets/Panel3.h"
#include "platform/widgets/PropertyBag.h"
#include "platform/widgets/Twips.h"
#include "platform/widgets/WebBrowser.h"
#include "support/ScriptedRegistry.h"

#include <QAbstractButton>
#include <QLabel>
#include <QTest>
#include <QTextBrowser>

#include <gtest/gtest.h>

#include <ctime>

namespace
{
cMessagePtr MessageOf(const QByteArray& octets, enMsgType type = emtEmail)
{
    auto message = std::make_shared<cMessage>();
    message->SetCDOMessage(std::make_shared<cdo::Message>(octets));
    message->SetMessageType(type);
    message->SetEdited(false);
    return message;
}

const QByteArray BothBodies =
    "From: Ann <ann@example.com>\r\nTo: studio@example.org\r\nSubject: Hello\r\n"
    "Date: Tue, 10 Nov 2026 06:00:00 +0000\r\n"
    "Received: from a by b; Tue, 10 Nov 2026 06:00:24 +0000\r\nMIME-Version: 1.0\r\n"
    "Content-Type: multipart/alternative; boundary=x\r\n\r\n--x\r\nContent-Type: text/plain\r\n\r\n"
    "the text\r\n--x\r\nContent-Type: text/html\r\n\r\n<p>the <b>page</b>\r\n--x--\r\n";
const QByteArray OnlyText = "From: +447700900123\r\nTo: 60777\r\nSubject: Hi\r\n\r\nthe text\r\n";
} // namespace

class uMessageBasicTest : public testing::Test
{
protected:
    uMessageBasicTest() { View.show(); }

    QLabel& Label(const char* name) { return *View.findChild<QLabel*>(QLatin1String(name)); }
    QString Shown(const char* name) { return Label(name).text(); }
    QString Body() { return View.findChild<QTextBrowser*>(QStringLiteral("pageText"))->toPlainText(); }
    Panel3& Personal() { return *View.findChild<Panel3*>(QStringLiteral("pnlPersonal")); }
    Panel3& Main() { return *View.findChild<Panel3*>(QStringLiteral("pnlMain")); }
    QFrame& Frame() { return *View.findChild<QFrame*>(QStringLiteral("picBody")); }
    WebBrowser& Browser() { return *View.findChild<WebBrowser*>(QStringLiteral("wbBody")); }
    int Pixels(double twips) { return Twips::ToPixels(View, twips); }

    ScriptedRegistry Machine;
    uMessageBasic View;
};

TEST_F(uMessageBasicTest, TheCaptionsAreFixed)
{
    EXPECT_EQ(Shown("lblDateDesc"), QStringLiteral("Date:"));
    EXPECT_EQ(Shown("lblFromDesc"), QStringLiteral("From:"));
    EXPECT_EQ(Shown("lblToDesc"), QStringLiteral("To:"));
    EXPECT_EQ(Shown("lblSubjectDesc"), QStringLiteral("Subject"));
    EXPECT_EQ(Personal().Caption(), QStringLiteral("Personal Message"));
    EXPECT_EQ(Label("lblToDesc").font().family(), QStringLiteral("Tahoma"));
}

TEST_F(uMessageBasicTest, ANewViewIsEmpty)
{
    for (const char* name : {"lblDate", "lblFrom", "lblTo", "lblSubject"})
        EXPECT_EQ(Shown(name), QString()) << name;
    EXPECT_EQ(Body(), QString());
    EXPECT_FALSE(Personal().Visible());
    EXPECT_EQ(View.Message(), nullptr);
    EXPECT_EQ(View.BackColour(), 0xD1A89F);
    EXPECT_EQ(View.ForeColour(), 0);
    EXPECT_EQ(View.Font(), View.font());
    EXPECT_FALSE(View.ShowBodyBorder());
}

TEST_F(uMessageBasicTest, AMessageWithBothBodiesShowsTheHtmlOne)
{
    const cMessagePtr message = MessageOf(BothBodies);
    View.SetMessage(message);
    EXPECT_EQ(Shown("lblDate"), message->ReceivedString());
    EXPECT_EQ(Shown("lblDate"), QStringLiteral("10/11/2026 06:00:24"));
    EXPECT_EQ(Shown("lblFrom"), QStringLiteral("Ann <ann@example.com>"));
    EXPECT_EQ(Shown("lblTo"), QStringLiteral("studio@example.org"));
    EXPECT_EQ(Shown("lblSubject"), QStringLiteral("Hello"));
    EXPECT_EQ(Body(), QStringLiteral("the page"));
}

TEST_F(uMessageBasicTest, AMessageWithoutHtmlShowsItsText)
{
    View.SetMessage(MessageOf(OnlyText));
    EXPECT_EQ(Body().trimmed(), QStringLiteral("the text"));
}

TEST_F(uMessageBasicTest, ValuesTakeTheRoomOfThePersonalPanelWhileItIsHiddenIfAskedTo)
{
    View.resize(600, 400);
    const cMessagePtr message = MessageOf(BothBodies);
    View.SetMessage(message);
    const auto rightOf = [&](const char* name) { return Label(name).x() + Label(name).width(); };
    EXPECT_EQ(rightOf("lblSubject"), Personal().x() - Pixels(120)) << "off at first";
    View.SetUsesFreeWidth(true);
    for (const char* name : {"lblDate", "lblFrom", "lblTo", "lblSubject"})
        EXPECT_EQ(rightOf(name), Main().width() - Pixels(120)) << name;
    message->SetPersonalToContact(5);
    View.SetMessage(message);
    EXPECT_EQ(rightOf("lblSubject"), Personal().x() - Pixels(120));
    View.SetMessage(nullptr);
    View.resize(700, 400);
    EXPECT_EQ(rightOf("lblSubject"), 700 - Pixels(120));
}

TEST_F(uMessageBasicTest, NothingAfterAMessageClearsTheView)
{
    const cMessagePtr message = MessageOf(BothBodies);
    message->SetPersonalToContact(5);
    View.SetMessage(message);
    EXPECT_TRUE(Personal().Visible());
    View.SetMessage(nullptr);
    for (const char* name : {"lblDate", "lblFrom", "lblTo", "lblSubject"})
        EXPECT_EQ(Shown(name), QString()) << name;
    EXPECT_EQ(Body(), QString());
    EXPECT_FALSE(Personal().Visible());
}

TEST_F(uMessageBasicTest, TheMarkIsThereForAPersonalMessageOnly)
{
    const cMessagePtr message = MessageOf(OnlyText);
    View.SetMessage(message);
    EXPECT_FALSE(Personal().Visible());
    message->SetPersonalToContact(-1);
    EXPECT_FALSE(Personal().Visible());
    View.SetMessage(message);
    EXPECT_TRUE(Personal().Visible());
}

TEST_F(uMessageBasicTest, NumbersOfATextMessageAreMaskedWhereTheMachineSaysSo)
{
    const QString key = QStringLiteral("SOFTWARE\\Kelvarin");
    View.SetMessage(MessageOf(OnlyText, emtSMS));
    EXPECT_EQ(Shown("lblFrom"), QStringLiteral("+447700900123"));
    Machine.Set(key, QStringLiteral("MaskPhoneNumbers"), QStringLiteral("0"));
    View.SetMessage(MessageOf(OnlyText, emtSMS));
    EXPECT_EQ(Shown("lblFrom"), QStringLiteral("+447700900123"));
    Machine.Set(key, QStringLiteral("MaskPhoneNumbers"), QStringLiteral("1"));
    View.SetMessage(MessageOf(OnlyText, emtSMS));
    EXPECT_EQ(Shown("lblFrom"), QStringLiteral("0XXX-XXXXXX"));
    EXPECT_EQ(Shown("lblTo"), QStringLiteral("0XXX-XXXXXX"));
}

TEST_F(uMessageBasicTest, AnEmailIsNotMasked)
{
    Machine.Set(QStringLiteral("SOFTWARE\\Kelvarin"), QStringLiteral("MaskPhoneNumbers"), QStringLiteral("1"));
    View.SetMessage(MessageOf(OnlyText, emtEmail));
    EXPECT_EQ(Shown("lblFrom"), QStringLiteral("+447700900123"));
    EXPECT_EQ(Shown("lblTo"), QStringLiteral("60777"));
}

TEST_F(uMessageBasicTest, TheMessageStaysAsItIs)
{
    const cMessagePtr message = MessageOf(BothBodies);
    int edits = 0;
    QObject::connect(message.get(), &cMessage::MessageEdited, &View, [&] { ++edits; });
    const qint32 flags = message->Flags();
    View.SetMessage(message);
    EXPECT_EQ(edits, 0);
    EXPECT_FALSE(message->Edited());
    EXPECT_EQ(message->Flags(), flags);
    EXPECT_EQ(message->CDOMessage()->Octets(), BothBodies);
}

TEST_F(uMessageBasicTest, TheViewDoesNotFollowTheMessage)
{
    const cMessagePtr message = MessageOf(OnlyText);
    View.SetMessage(message);
    message->CDOMessage()->SetSubject(QStringLiteral("New"));
    message->SetEdited(true);
    EXPECT_EQ(Shown("lblSubject"), QStringLiteral("Hi"));
}

TEST_F(uMessageBasicTest, AnEmptyMessageShowsAnEmptyView)
{
    View.SetMessage(MessageOf(OnlyText));
    View.SetMessage(MessageOf(QByteArray()));
    for (const char* name : {"lblDate", "lblFrom", "lblTo", "lblSubject"})
        EXPECT_EQ(Shown(name), QString()) << name;
    EXPECT_EQ(Body(), QString());
}

TEST_F(uMessageBasicTest, ASubjectIsPlainTextOnOneLine)
{
    View.SetMessage(MessageOf("Subject: =?utf-8?q?a_<b>b</b>=0D=0Ac=0Ad_=E2=80=9Cq=E2=80=9D_=F0=9F=98=80?=\r\n\r\nx"));
    EXPECT_FALSE(Shown("lblSubject").contains(u'\n') || Shown("lblSubject").contains(u'\r'));
    EXPECT_TRUE(Shown("lblSubject").startsWith(QStringLiteral("a <b>b</b>")));
    EXPECT_TRUE(Shown("lblSubject").endsWith(QString::fromUtf8("\u201Cq\u201D \U0001F600")));
    EXPECT_EQ(Label("lblSubject").textFormat(), Qt::PlainText);
    EXPECT_TRUE(Label("lblSubject").textInteractionFlags() & Qt::TextSelectableByMouse);
}

TEST_F(uMessageBasicTest, ALongSubjectEndsInDotsAndHasItsWholeTextAsToolTip)
{
    const QByteArray longSubject = QByteArray("word <i> ").repeated(60).trimmed();
    View.SetMessage(MessageOf("Subject: " + longSubject + "\r\n\r\nx"));
    EXPECT_EQ(Label("lblSubject").toolTip(),
              QStringLiteral("<span>%1</span>").arg(QString::fromLatin1(longSubject).toHtmlEscaped()));
    EXPECT_LE(Label("lblSubject").geometry().right(), Personal().x());
    View.SetMessage(MessageOf("Subject: short\r\n\r\nx"));
    EXPECT_EQ(Label("lblSubject").toolTip(), QString());
}

TEST_F(uMessageBasicTest, AHostilePageIsShownHarmlessWithANotice)
{
    View.SetMessage(MessageOf("Content-Type: text/html\r\n\r\n<p>Hi<script>x</script><img src=http://example.com/x>"));
    EXPECT_TRUE(Body().startsWith(QStringLiteral("Hi")));
    EXPECT_EQ(Label("lblNotice").text(),
              QStringLiteral("Pictures and other content on the internet are not shown. Active content was removed."));
}

TEST_F(uMessageBasicTest, AnInlinePictureComesFromTheMessage)
{
    QFile file(QStringLiteral(TOLVA_TEST_DATA "/../../samples/mail/press-01-band.eml"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const cMessagePtr message = MessageOf(file.readAll());
    ASSERT_TRUE(message->CDOMessage()->HTMLBody().contains(QStringLiteral("cid:")));
    View.SetMessage(message);
    EXPECT_TRUE(Body().contains(QChar::ObjectReplacementCharacter));
    EXPECT_FALSE(Label("lblNotice").text().contains(QStringLiteral("cannot be shown")));
}

TEST_F(uMessageBasicTest, TheViewIsNoSmallerThan4000By3000Twips)
{
    View.resize(Pixels(3000), Pixels(2000));
    EXPECT_EQ(View.size(), QSize(Pixels(4000), Pixels(3000)));
    View.resize(Pixels(3000), Pixels(5000));
    EXPECT_EQ(View.size(), QSize(Pixels(4000), Pixels(5000)));
    View.resize(Pixels(6000), Pixels(2000));
    EXPECT_EQ(View.size(), QSize(Pixels(6000), Pixels(3000)));
}

TEST_F(uMessageBasicTest, ThePartsFollowTheSize)
{
    const int left = Label("lblFrom").x();
    const QPoint body = Frame().pos();
    for (const int width : {4000, 9000, 12000}) {
        View.resize(Pixels(width), Pixels(5000));
        EXPECT_EQ(Main().geometry(), View.rect());
        EXPECT_EQ(Personal().x() + Personal().width(), View.width() - Pixels(150));
        for (const char* name : {"lblDate", "lblFrom", "lblTo", "lblSubject"}) {
            EXPECT_EQ(Label(name).x(), left);
            EXPECT_EQ(Label(name).x() + Label(name).width(), std::max(Personal().x() - Pixels(120), left)) << name;
        }
        EXPECT_EQ(Frame().pos(), body);
        EXPECT_EQ(Frame().x() + Frame().width(), View.width() - Pixels(120));
        EXPECT_EQ(Frame().y() + Frame().height(), View.height() - Pixels(120));
        EXPECT_EQ(Browser().geometry(), Frame().rect());
    }
}

TEST_F(uMessageBasicTest, TheBodyStandsOffItsBorder)
{
    View.SetShowBodyBorder(true);
    EXPECT_NE(Frame().frameShape(), QFrame::NoFrame);
    const QRect inner = Frame().contentsRect();
    const int offset = Pixels(60);
    EXPECT_EQ(Browser().geometry(), inner.adjusted(offset, offset, -offset, -offset));
    View.resize(View.width() + 50, View.height() + 30);
    EXPECT_EQ(Browser().geometry(), Frame().contentsRect().adjusted(offset, offset, -offset, -offset));
    View.SetShowBodyBorder(false);
    EXPECT_EQ(Frame().frameShape(), QFrame::NoFrame);
    EXPECT_EQ(Browser().geometry(), Frame().rect());
}

TEST_F(uMessageBasicTest, ColoursAndFontReachAllEightLabels)
{
    View.SetBackColour(0x0000FF);
    View.SetForeColour(0xFFFFFF);
    QFont font(QStringLiteral("DejaVu Serif"), 14);
    View.SetFont(font);
    EXPECT_EQ(Main().BackColour(), 0x0000FF);
    for (const char* name :
         {"lblDate", "lblFrom", "lblTo", "lblSubject", "lblDateDesc", "lblFromDesc", "lblToDesc", "lblSubjectDesc"}) {
        EXPECT_EQ(Label(name).palette().color(QPalette::Window), QColor(255, 0, 0)) << name;
        EXPECT_EQ(Label(name).palette().color(QPalette::WindowText), QColor(Qt::white)) << name;
        EXPECT_EQ(Label(name).font().family(), font.family()) << name;
        EXPECT_EQ(Label(name).font().pointSize(), 14) << name;
        EXPECT_GE(Label(name).height(), QFontMetrics(font).height()) << name;
    }
}

TEST_F(uMessageBasicTest, TheHeaderCanBeReadInBothThemes)
{
    QPalette dark;
    dark.setColor(QPalette::Window, QColor(45, 47, 52));
    dark.setColor(QPalette::WindowText, Qt::white);
    dark.setColor(QPalette::Button, QColor(45, 47, 52));
    for (const QPalette& theme : {QPalette(), dark}) {
        View.setPalette(theme);
        for (const qint32 ground : {static_cast<qint32>(0xD1A89F), static_cast<qint32>(0x8000000FU)}) {
            View.SetBackColour(ground);
            const QPalette colours = Label("lblFrom").palette();
            EXPECT_GT(Contrast::Ratio(colours.color(QPalette::WindowText), colours.color(QPalette::Window)), 4.5);
        }
    }
}

TEST_F(uMessageBasicTest, ThePropertiesAreKeptInABag)
{
    PropertyBag empty;
    View.WriteProperties(empty);
    EXPECT_TRUE(empty.Values().isEmpty());

    View.SetBackColour(0x123456);
    View.SetForeColour(0x654321);
    View.SetFont(QFont(QStringLiteral("DejaVu Serif"), 14));
    View.SetShowBodyBorder(true);
    PropertyBag bag;
    View.WriteProperties(bag);
    EXPECT_EQ(bag.Values().keys(), (QStringList{QStringLiteral("BackColour"), QStringLiteral("Font"),
                                                QStringLiteral("ForeColour"), QStringLiteral("ShowBodyBorder")}));
    uMessageBasic other;
    other.ReadProperties(bag);
    EXPECT_EQ(other.BackColour(), 0x123456);
    EXPECT_EQ(other.ForeColour(), 0x654321);
    EXPECT_EQ(other.Font(), View.Font());
    EXPECT_TRUE(other.ShowBodyBorder());

    other.ReadProperties(empty);
    EXPECT_EQ(other.BackColour(), 0x123456); // the panel's own colour is the default when read
    EXPECT_EQ(other.ForeColour(), 0);
    EXPECT_FALSE(other.ShowBodyBorder());
}

TEST_F(uMessageBasicTest, ThePropertiesAreThoseOfAForm)
{
    for (const char* name : {"BackColour", "ForeColour", "Font", "ShowBodyBorder"})
        EXPECT_GE(View.metaObject()->indexOfProperty(name), 0) << name;
    EXPECT_TRUE(View.setProperty("BackColour", 255));
    EXPECT_EQ(View.BackColour(), 255);
}

TEST_F(uMessageBasicTest, AMailOfFiftyMegabytesInItsSubjectOrTextShowsAtOnceAndWholeWhenAsked)
{
    const QByteArray words = QByteArray("some words ").repeated(50'000'000 / 11);
    const cMessagePtr subject = MessageOf("From: " + words + "\r\nSubject: " + words + "\r\n\r\nthe text\r\n");
    const cMessagePtr text = MessageOf("From: a@b.org\r\nSubject: Hi\r\n\r\n" + words + "\r\n");
    const auto seconds = [this](const cMessagePtr& message) {
        const std::clock_t begin = std::clock();
        View.SetMessage(message);
        QCoreApplication::processEvents();
        View.grab();
        return double(std::clock() - begin) / CLOCKS_PER_SEC;
    };
    seconds(MessageOf(OnlyText)); // what the first page costs besides
    EXPECT_LT(seconds(subject), 1.0);
    EXPECT_LE(View.findChild<QLabel*>(QStringLiteral("lblSubject"))->text().size(), 10'000);
    EXPECT_LT(seconds(text), 2.0);
    const auto* notice = View.findChild<QLabel*>(QStringLiteral("lblNotice"));
    EXPECT_TRUE(notice->text().contains(QStringLiteral("very long (more than"))) << notice->text().toStdString();
}

TEST_F(uMessageBasicTest, ABodyThatIsShownInPartShowsWhollyWhenAsked)
{
    const QByteArray words = QByteArray("words and words\r\n").repeated(1'200'000 / 17);
    View.SetMessage(MessageOf("From: a@b.org\r\nSubject: Hi\r\n\r\n" + words + "the end\r\n"));
    auto* showAll = View.findChild<QAbstractButton*>(QStringLiteral("cmdShowAll"));
    ASSERT_TRUE(showAll->isVisible());
    QTest::mouseClick(showAll, Qt::LeftButton);
    EXPECT_TRUE(View.findChild<QTextBrowser*>()->toPlainText().trimmed().endsWith(QStringLiteral("the end")));
    EXPECT_FALSE(showAll->isVisible());
}
