// SPDX-License-Identifier: Apache-2.0
#include "platform/widgets/Icons.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QPixmapCache>
#include <QSvgRenderer>

#include <algorithm>
#include <cmath>

/// The linker drops the resource of a static library unless somebody asks for it.
static void LoadResource()
{
    static const bool isLoaded = [] {
        Q_INIT_RESOURCE(icons);
        return true;
    }();
    Q_UNUSED(isLoaded)
}

namespace
{
const QString IconFolder = QStringLiteral(":/tolva/icons");

/// Stands in the drawings for the colour of the lines.
constexpr char Ink[] = "#101418";

constexpr double DisabledOpacity = 0.45;

/// Point forwards or back in the direction of reading, and so the other way where that is from right to left.
bool IsDirected(const QString& key)
{
    static const QStringList directed = {QStringLiteral("reply"), QStringLiteral("replyall"), QStringLiteral("forward"),
                                         QStringLiteral("send")};
    return directed.contains(key);
}

QColor InkOf(QIcon::Mode mode)
{
    const QPalette palette = QApplication::palette();
    if (mode == QIcon::Selected)
        return palette.color(QPalette::Active, QPalette::HighlightedText);
    return palette.color(QPalette::Active, QPalette::WindowText);
}

/// Draws one icon in the colours of the moment.
class InkIconEngine : public QIconEngine
{
public:
    InkIconEngine(const QString& key, const QByteArray& drawing) : Key_(key), Drawing_(drawing) {}

    QIconEngine* clone() const override { return new InkIconEngine(Key_, Drawing_); }
    QString key() const override { return QStringLiteral("tolva"); }
    QString iconName() override { return Key_; }
    bool isNull() override { return false; }
    QSize actualSize(const QSize& size, QIcon::Mode, QIcon::State) override
    {
        const int side = qMin(size.width(), size.height());
        return {side, side};
    }

    void paint(QPainter* painter, const QRect& area, QIcon::Mode mode, QIcon::State state) override
    {
        // Also where the painter draws for another device than its own, as into a picture of a window.
        const QTransform toDevice = painter->deviceTransform();
        const double ratio = std::hypot(toDevice.m11(), toDevice.m12());
        const int side = qMin(area.width(), area.height());
        const QRect square(area.x() + (area.width() - side) / 2, area.y() + (area.height() - side) / 2, side, side);
        painter->drawPixmap(square, scaledPixmap(square.size() * ratio, mode, state, ratio));
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override
    {
        return scaledPixmap(size, mode, state, 1);
    }

    /// size: device pixels.
    QPixmap scaledPixmap(const QSize& size, QIcon::Mode mode, QIcon::State, qreal) override
    {
        const QColor ink = InkOf(mode);
        const bool isDisabled = mode == QIcon::Disabled;
        const bool isMirrored = QApplication::isRightToLeft() && IsDirected(Key_);
        const QString name = QStringLiteral("tolva-icon/%1/%2x%3/%4/%5/%6")
                                 .arg(Key_)
                                 .arg(size.width())
                                 .arg(size.height())
                                 .arg(ink.name())
                                 .arg(isDisabled)
                                 .arg(isMirrored);
        QPixmap pixmap;
        if (size.isEmpty() || QPixmapCache::find(name, &pixmap))
            return pixmap;
        pixmap = QPixmap(size);
        pixmap.fill(Qt::transparent);
        QSvgRenderer renderer(QByteArray(Drawing_).replace(Ink, ink.name().toLatin1()));
        renderer.setAspectRatioMode(Qt::KeepAspectRatio);
        QPainter painter(&pixmap);
        painter.setRenderHint(QPainter::Antialiasing);
        if (isDisabled)
            painter.setOpacity(DisabledOpacity);
        if (isMirrored) {
            painter.translate(size.width(), 0);
            painter.scale(-1, 1);
        }
        renderer.render(&painter);
        painter.end();
        QPixmapCache::insert(name, pixmap);
        return pixmap;
    }

private:
    QString Key_;
    QByteArray Drawing_;
};

} // namespace

QIcon Icons::Get(const QString& key)
{
    LoadResource();
    const QString name = key.toLower();
    // A key is a word, and never a way out of the folder.
    const bool isWord = std::all_of(name.begin(), name.end(), [](QChar letter) { return letter.isLetter(); });
    QFile file(IconFolder + u'/' + name + QStringLiteral(".svg"));
    if (name.isEmpty() || !isWord || !file.open(QIODevice::ReadOnly))
        return QIcon();
    return QIcon(new InkIconEngine(name, file.readAll()));
}

QStringList Icons::Keys()
{
    LoadResource();
    QStringList keys = QDir(IconFolder).entryList({QStringLiteral("*.svg")}, QDir::Files, QDir::Name);
    for (QString& key : keys)
        key.chop(4);
    return keys;
}
