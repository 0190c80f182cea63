// SPDX-License-Identifier: Apache-2.0
#include "AttachmentPictures.h"

#include "messages/PictureWindow.h"
#include "window/Appearance.h"

#include <QApplication>
#include <QBuffer>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QPointer>

namespace
{
constexpr QSize PhotoSize(4000, 3000);
constexpr QSize PanoramaSize(6000, 700);
constexpr QSize PortraitSize(1600, 1200);
constexpr QSize TinySize(16, 16);
constexpr QSize LogoSize(480, 320);

QByteArray OctetsOf(const QImage& image, const char* format)
{
    QByteArray octets;
    QBuffer buffer(&octets);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, format);
    return octets;
}

/// Sky, hills and sea.
QImage Landscape(QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    QLinearGradient sky(0, 0, 0, size.height());
    sky.setColorAt(0, QColor(0x4F8FBF));
    sky.setColorAt(0.6, QColor(0xF3D9B1));
    painter.fillRect(image.rect(), sky);
    QPainterPath hills(QPointF(0, size.height() * 0.6));
    hills.cubicTo(size.width() * 0.3, size.height() * 0.3, size.width() * 0.6, size.height() * 0.8, size.width(),
                  size.height() * 0.5);
    hills.lineTo(size.width(), size.height());
    hills.lineTo(0, size.height());
    painter.fillPath(hills, QColor(0x3E6B4F));
    painter.fillRect(0, size.height() * 4 / 5, size.width(), size.height() / 5, QColor(0x2B5C7A));
    return image;
}

QImage Logo()
{
    QImage image(LogoSize, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0x1F, 0x6F, 0x8B));
    painter.drawEllipse(QRect(60, 40, 240, 240));
    painter.setBrush(QColor(0xC0, 0x39, 0x2B, 0x80));
    painter.drawEllipse(QRect(200, 40, 240, 240));
    return image;
}

/// A JPEG that a camera held upright has written: its picture lies on its side, and its header says so.
QByteArray Turned(QByteArray jpeg)
{
    constexpr char turnRight = 6;
    // One entry: 0x112, a short, how the picture is turned.
    QByteArray exif = QByteArray::fromHex("457869660000"
                                          "4D4D002A00000008"
                                          "0001"
                                          "0112000300000001");
    exif.append('\0').append(turnRight).append(6, '\0');
    QByteArray segment("\xFF\xE1");
    const auto length = static_cast<quint16>(exif.size() + 2);
    segment.append(static_cast<char>(length >> 8)).append(static_cast<char>(length & 0xFF));
    return jpeg.insert(2, segment + exif);
}

std::shared_ptr<cdo::Message> MailWithPictures()
{
    auto mail = std::make_shared<cdo::Message>(QByteArray("From: Jo <jo@example.org>\r\nSubject: x\r\n\r\nText"));
    const auto add = [&mail](const char* name, const char* type, const QByteArray& octets) {
        mail->AddAttachment(QString::fromLatin1(name), type, octets);
    };
    add("Harbour at six in the evening.jpg", "image/jpeg", OctetsOf(Landscape(PhotoSize), "JPG"));
    add("panorama.jpg", "image/jpeg", OctetsOf(Landscape(PanoramaSize), "JPG"));
    add("tiny.png", "image/png", OctetsOf(Landscape(TinySize), "PNG"));
    add("logo.png", "image/png", OctetsOf(Logo(), "PNG"));
    add("upright.jpg", "image/jpeg", Turned(OctetsOf(Landscape(PortraitSize), "JPG")));
    add("broken.jpg", "image/jpeg", "no picture");
    return mail;
}
} // namespace

void AttachmentPictures::Take(const Save& save, const std::function<void()>& settle)
{
    const QPointer<PictureWindow> window(new PictureWindow(MailWithPictures(), {0, 1, 2, 3, 4, 5}, 0, nullptr));
    window->show();
    const auto take = [&](const char* name, int ratio) {
        settle();
        save(*window, name, ratio);
    };
    take("picture", 1);
    take("picture-200", 2);
    Appearance::Apply(QStringLiteral("dark"));
    take("picture-dark", 1);
    Appearance::Apply(QStringLiteral("light"));
    QApplication::setLayoutDirection(Qt::RightToLeft);
    take("picture-right-to-left", 1);
    QApplication::setLayoutDirection(Qt::LeftToRight);
    for (const char* name :
         {"picture-wide", "picture-tiny", "picture-transparent", "picture-turned", "picture-broken"}) {
        window->Next();
        take(name, 1);
    }
    window->Previous();
    window->Previous();
    Appearance::Apply(QStringLiteral("dark"));
    take("picture-transparent-dark", 1);
    Appearance::Apply(QStringLiteral("light"));
    window->close();
}
