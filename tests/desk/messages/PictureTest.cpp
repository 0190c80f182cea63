// SPDX-License-Identifier: Apache-2.0

// Pictures and sound among the files of a message.

#include "DeskTest.h"
#include "messages/AttachmentList.h"
#include "messages/PictureLoader.h"
#include "messages/PictureWindow.h"
#include "platform/widgets/PictureReader.h"
#include "support/ScriptedFileDialog.h"

#include <QBuffer>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTreeWidget>
#include <QtTest>

namespace
{
QByteArray Encoded(const QImage& image, const char* format = "PNG")
{
    QByteArray octets;
    QBuffer buffer(&octets);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, format);
    return octets;
}

QByteArray Picture(const QColor& colour, QSize size = {200, 100}, const char* format = "PNG")
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(colour);
    return Encoded(image, format);
}

/// A PNG whose header says a size that its few octets cannot hold.
QByteArray Claiming(quint32 width, quint32 height)
{
    QByteArray octets = Picture(Qt::red, {8, 8});
    QByteArray head;
    for (const quint32 number : {width, height}) {
        for (const int shift : {24, 16, 8, 0})
            head.append(static_cast<char>((number >> shift) & 0xFF));
    }
    octets.replace(16, 8, head);
    // The checksum of the header's chunk.
    quint32 sum = 0xFFFFFFFF;
    for (qsizetype i = 12; i < 29; ++i) {
        sum ^= static_cast<quint8>(octets.at(i));
        for (int bit = 0; bit < 8; ++bit)
            sum = (sum >> 1) ^ ((sum & 1) != 0 ? 0xEDB88320 : 0);
    }
    sum = ~sum;
    for (int i = 0; i < 4; ++i)
        octets[29 + i] = static_cast<char>((sum >> (24 - 8 * i)) & 0xFF);
    return octets;
}

/// How often a widget gets another size while this stands.
class ResizeCounter : public QObject
{
public:
    ResizeCounter(QWidget& widget, int& count) : Count_(count) { widget.installEventFilter(this); }

protected:
    bool eventFilter(QObject*, QEvent* event) override
    {
        if (event->type() == QEvent::Resize)
            ++Count_;
        return false;
    }

private:
    int& Count_;
};

class PictureTest : public DeskTest
{
protected:
    void SetUp() override
    {
        Mail_->SetCDOMessage(Content_);
        Window_.resize(600, 300);
        Files_.setParent(&Window_);
        Window_.show();
    }
    void TearDown() override
    {
        AttachmentList::SetSoundPlayer({});
        if (Large())
            Large()->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        Files_.setParent(nullptr);
        Files_.hide();
        Window_.close();
    }
    void Add(const char* name, const QByteArray& type, const QByteArray& octets)
    {
        Content_->AddAttachment(QString::fromLatin1(name), type, octets);
    }
    void ShowFiles()
    {
        Files_.SetMessage(Mail_);
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&Window_));
    }
    QTreeWidget* List() const { return Files_.findChild<QTreeWidget*>(QStringLiteral("attachmentsList")); }
    /// The middle of the picture in its row.
    QColor Small(int file) const
    {
        return List()->topLevelItem(file)->icon(0).pixmap(List()->iconSize()).toImage().pixelColor(20, 20);
    }
    PictureWindow* Large() const { return Files_.findChild<PictureWindow*>(); }
    /// The middle of what the large window shows.
    QColor Middle() const
    {
        const QImage image = Large()->findChild<QScrollArea*>()->grab().toImage();
        return image.pixelColor(image.rect().center());
    }
    void Press(Qt::Key key) const { QTest::keyClick(Large(), key); }
    QString Caption() const { return Large()->findChild<QLabel*>(QStringLiteral("pictureCaption"))->text(); }
    void Choose(int file) const { List()->setCurrentItem(List()->topLevelItem(file)); }
    void OpenLarge(int file)
    {
        Choose(file);
        List()->setFocus();
        QTest::keyClick(List(), Qt::Key_Return);
        ASSERT_NE(Large(), nullptr);
        ASSERT_TRUE(QTest::qWaitForWindowActive(Large()));
    }

    cMessagePtr Mail_ = std::make_shared<cMessage>();
    std::shared_ptr<cdo::Message> Content_ =
        std::make_shared<cdo::Message>(QByteArray("From: a@b.org\r\nSubject: x\r\n\r\nText"));
    QWidget Window_;
    AttachmentList Files_;
};
} // namespace

TEST_F(PictureTest, PicturesAreShownSmallBesideTheirNames)
{
    Add("red.png", "image/png", Picture(Qt::red));
    Add("notes.txt", "text/plain", "words");
    Add("blue.jpg", "image/jpeg", Picture(Qt::blue, {3000, 1500}, "JPG"));
    ShowFiles();
    EXPECT_TRUE(WaitUntil([this] { return Small(0) == QColor(Qt::red) && Small(2).blue() > 240; }));
    EXPECT_NE(Small(1), QColor(Qt::red));
    EXPECT_GE(List()->visualItemRect(List()->topLevelItem(0)).height(), 40);
}

TEST_F(PictureTest, WhatIsNoPlainPictureOrClaimsTooMuchIsNotDecoded)
{
    EXPECT_EQ(PictureReader::Pixels(Claiming(60'000, 60'000)), 0);
    Add("bomb.png", "image/png", Claiming(60'000, 60'000));
    Add("drawing.png", "image/png", "<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'/>");
    Add("empty.png", "image/png", "");
    Add("real.svg", "image/svg+xml", "<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'/>");
    QList<int> loaded;
    PictureLoader loader(nullptr);
    QObject::connect(&loader, &PictureLoader::Loaded, &loader, [&](int file, const QImage&) { loaded.append(file); });
    QSignalSpy finished(&loader, &PictureLoader::Finished);
    Add("red.png", "image/png", Picture(Qt::red));
    loader.Load(Content_->Octets(), {0, 1, 2, 3, 4}, QSize(40, 40));
    ASSERT_TRUE(finished.wait(10'000));
    EXPECT_EQ(loaded, QList<int>{4});
}

TEST_F(PictureTest, OfOneMailNoMoreIsDecodedThanItsBound)
{
    const QByteArray large = Picture(Qt::red, {6000, 6000});
    for (int i = 0; i < 5; ++i)
        Add("large.png", "image/png", large);
    QList<int> loaded;
    PictureLoader loader(nullptr);
    QObject::connect(&loader, &PictureLoader::Loaded, &loader, [&](int file, const QImage& picture) {
        loaded.append(file);
        EXPECT_LE(picture.width(), 40);
    });
    QSignalSpy finished(&loader, &PictureLoader::Finished);
    loader.Load(Content_->Octets(), {0, 1, 2, 3, 4}, QSize(40, 40));
    ASSERT_TRUE(finished.wait(30'000));
    EXPECT_EQ(loaded.size(), PictureLoader::MostPixels / (6000LL * 6000));
}

TEST_F(PictureTest, KeysGoThroughThePicturesZoomSaveAndClose)
{
    Add("red.png", "image/png", Picture(Qt::red));
    Add("notes.txt", "text/plain", "words");
    Add("blue.png", "image/png", Picture(Qt::blue));
    ShowFiles();
    OpenLarge(0);
    EXPECT_TRUE(WaitUntil([this] { return Middle() == QColor(Qt::red); }));
    EXPECT_TRUE(Caption().startsWith(QStringLiteral("red.png \u00B7 1 of 2 \u00B7 100%"))) << qPrintable(Caption());
    Press(Qt::Key_Right);
    EXPECT_EQ(Large()->File(), 2);
    EXPECT_TRUE(WaitUntil([this] { return Middle() == QColor(Qt::blue); }));
    Press(Qt::Key_Right);
    EXPECT_EQ(Large()->File(), 0) << "round about, without the text";
    Press(Qt::Key_Left);
    EXPECT_TRUE(WaitUntil([this] { return Middle() == QColor(Qt::blue); }));
    Press(Qt::Key_Plus);
    EXPECT_DOUBLE_EQ(Large()->Scale(), 1.25);
    Press(Qt::Key_Minus);
    Press(Qt::Key_Minus);
    EXPECT_DOUBLE_EQ(Large()->Scale(), 0.8);
    for (int i = 0; i < 40; ++i)
        Press(Qt::Key_Plus);
    EXPECT_DOUBLE_EQ(Large()->Scale(), 8);
    const QString path = Path(QStringLiteral("saved.png"));
    ScriptedFileDialog dialogs;
    dialogs.ExpectSave(path);
    QTest::keyClick(Large(), Qt::Key_S, Qt::ControlModifier);
    EXPECT_EQ(Read(path), Picture(Qt::blue));
    Press(Qt::Key_Escape);
    EXPECT_TRUE(WaitUntil([this] { return Large() == nullptr; }));
}

TEST_F(PictureTest, ALargerPictureKeepsItsMiddleMovesByKeysAndIsWholeAgain)
{
    QImage image(4000, 4000, QImage::Format_RGB32);
    image.fill(Qt::red);
    QPainter(&image).fillRect(1900, 1900, 200, 200, Qt::blue);
    Add("large.png", "image/png", Encoded(image));
    ShowFiles();
    OpenLarge(0);
    ASSERT_TRUE(WaitUntil([this] { return Middle() == QColor(Qt::blue); }));
    const double whole = Large()->Scale();
    for (int i = 0; i < 8; ++i)
        Press(Qt::Key_Plus);
    ASSERT_GT(Large()->Scale(), 1);
    EXPECT_EQ(Middle(), QColor(Qt::blue)) << "what was in the middle is there";
    const auto* area = Large()->findChild<QScrollArea*>();
    const int top = area->verticalScrollBar()->value();
    const int left = area->horizontalScrollBar()->value();
    Press(Qt::Key_Down);
    EXPECT_GT(area->verticalScrollBar()->value(), top);
    Press(Qt::Key_Up);
    EXPECT_EQ(area->verticalScrollBar()->value(), top);
    QTest::keyClick(Large(), Qt::Key_Right, Qt::ShiftModifier);
    EXPECT_GT(area->horizontalScrollBar()->value(), left);
    QTest::keyClick(Large(), Qt::Key_Left, Qt::ShiftModifier);
    EXPECT_EQ(area->horizontalScrollBar()->value(), left);
    Press(Qt::Key_0);
    EXPECT_DOUBLE_EQ(Large()->Scale(), whole);
    EXPECT_EQ(area->verticalScrollBar()->maximum(), 0);
}

TEST_F(PictureTest, WhatOneSeesThroughIsSeenWhateverItsColours)
{
    for (const QColor& colour : {QColor(Qt::black), QColor(Qt::white)}) {
        QImage image(200, 200, QImage::Format_ARGB32);
        image.fill(Qt::transparent);
        QPainter(&image).fillRect(90, 90, 20, 20, colour);
        Add("logo.png", "image/png", Encoded(image));
    }
    ShowFiles();
    OpenLarge(0);
    for (const QColor& colour : {QColor(Qt::black), QColor(Qt::white)}) {
        EXPECT_TRUE(WaitUntil([&] { return Middle() == colour; }));
        const QImage shown = Large()->findChild<QScrollArea*>()->grab().toImage();
        const QPoint middle = shown.rect().center();
        QSet<QRgb> grounds;
        for (int x = 20; x < 80; ++x)
            grounds.insert(shown.pixel(middle + QPoint(x, 50)));
        EXPECT_EQ(grounds.size(), 2) << "one of them is another colour than the picture's";
        Press(Qt::Key_Right);
    }
}

TEST_F(PictureTest, APictureThatACameraHeldUprightStandsUpright)
{
    QImage image(400, 200, QImage::Format_RGB32);
    image.fill(Qt::red);
    QPainter(&image).fillRect(0, 0, 200, 200, Qt::blue);
    // The header says: turned to the right.
    QByteArray octets = Encoded(image, "JPG");
    octets.insert(2, QByteArray::fromHex("FFE10022457869660000"
                                         "4D4D002A00000008"
                                         "00010112000300000001000600000000"
                                         "0000"));
    Add("upright.jpg", "image/jpeg", octets);
    ShowFiles();
    OpenLarge(0);
    const auto at = [this](int y) {
        const QImage shown = Large()->findChild<QScrollArea*>()->grab().toImage();
        return shown.pixelColor(shown.rect().center() + QPoint(0, y));
    };
    EXPECT_TRUE(WaitUntil(
        [&] { return at(-150).blue() > 200 && at(-150).red() < 50 && at(150).red() > 200 && at(150).blue() < 50; }));
}

TEST_F(PictureTest, ADamagedPictureSaysSoAndAnotherMessageLeavesTheWindowItsOwn)
{
    Add("broken.png", "image/png", Picture(Qt::red).left(40));
    ShowFiles();
    OpenLarge(0);
    const auto* area = Large()->findChild<QScrollArea*>();
    const QString words = QStringLiteral("broken.png \u00B7 This file cannot be shown as a picture; it can be saved.");
    EXPECT_TRUE(WaitUntil([&] { return area->widget()->accessibleName() == words; }))
        << qPrintable(area->widget()->accessibleName());
    EXPECT_EQ(Caption(), QStringLiteral("broken.png")) << "the words stand where the picture would be";
    for (const int width : {300, 900}) {
        Large()->resize(width, 400);
        QCoreApplication::processEvents();
        EXPECT_EQ(area->horizontalScrollBar()->maximum(), 0) << width;
        EXPECT_EQ(area->verticalScrollBar()->maximum(), 0) << width;
    }
    Files_.SetMessage(nullptr);
    Press(Qt::Key_Plus);
    Press(Qt::Key_Right);
    EXPECT_EQ(Large()->File(), 0);
}

TEST_F(PictureTest, LinesOfTheCaptionAndTheSizeOfThePictureDoNotChaseEachOther)
{
    const QByteArray name = "a name of many words so that it needs several lines of the caption below .png";
    Add(name.constData(), "image/png", Picture(Qt::red, {300, 300}));
    ShowFiles();
    OpenLarge(0);
    ASSERT_TRUE(WaitUntil([this] { return Caption().contains(u'%'); }));
    auto* area = Large()->findChild<QScrollArea*>();
    int sizes = 0;
    const ResizeCounter counter(*area, sizes);
    for (int width = 560; width < 760; width += 3) {
        for (int height = 360; height < 380; height += 3) {
            Large()->resize(width, height);
            QCoreApplication::processEvents();
            sizes = 0;
            for (int round = 0; round < 6; ++round)
                QCoreApplication::processEvents();
            ASSERT_LT(sizes, 4) << width << " x " << height;
        }
    }
}

TEST_F(PictureTest, SoundIsHandedOverAfterAQuestionUnderANameOfOurs)
{
    Add("run-me.exe", "audio/mpeg", "ID3 song");
    QStringList played;
    AttachmentList::SetSoundPlayer([&](const QString& path) {
        played.append(path);
        return played.size() < 2;
    });
    ShowFiles();
    Choose(0);
    const auto open = [this] {
        QTest::mouseClick(Files_.findChild<QPushButton*>(QStringLiteral("attachmentOpen")), Qt::LeftButton);
    };
    const QString question = QStringLiteral("\"run-me.exe\" came with a message. Do you want the program that this "
                                            "computer has for sound to play it?");
    Ui.ExpectConfirmation(question, MessageBoxAnswer::No);
    open();
    EXPECT_EQ(played, QStringList());
    Ui.ExpectConfirmation(question, MessageBoxAnswer::Yes);
    open();
    ASSERT_EQ(played.size(), 1);
    EXPECT_TRUE(played.first().endsWith(QStringLiteral(".mp3"))) << qPrintable(played.first());
    EXPECT_FALSE(played.first().contains(u"run-me"));
    EXPECT_EQ(Read(played.first()), QByteArray("ID3 song"));
    Ui.ExpectConfirmation(question, MessageBoxAnswer::Yes);
    Ui.ExpectWarning(
        QStringLiteral("This computer has no program that plays \"run-me.exe\". Save it to play it elsewhere."));
    open();
}

TEST_F(PictureTest, OtherFilesAreOnlySaved)
{
    Add("page.html", "text/html", "<p>x</p>");
    ShowFiles();
    EXPECT_FALSE(Files_.findChild<QPushButton*>(QStringLiteral("attachmentOpen"))->isVisible());
    const QString path = Path(QStringLiteral("saved.html"));
    ScriptedFileDialog dialogs;
    dialogs.ExpectSave(path);
    Choose(0);
    QTest::keyClick(List(), Qt::Key_Return);
    EXPECT_EQ(Read(path), QByteArray("<p>x</p>"));
    EXPECT_EQ(Large(), nullptr);
}
