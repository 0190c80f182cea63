// SPDX-License-Identifier: Apache-2.0
#include "platform/widgets/DragData.h"

#include "common/GeneralHelper.h"
#include "platform/widgets/Twips.h"

#include <QDrag>
#include <QUrl>
#include <QWidget>

namespace
{
const QString UriList = QStringLiteral("text/uri-list");

DragRunner::Runner& CurrentRunner()
{
    static DragRunner::Runner runner;
    return runner;
}
} // namespace

void DragData::Clear()
{
    clear();
    ProvideFiles_ = nullptr;
}

void DragData::PromiseFiles(std::function<QStringList()> provide)
{
    ProvideFiles_ = std::move(provide);
}

QStringList DragData::formats() const
{
    QStringList all = QMimeData::formats();
    if (ProvideFiles_)
        all.append(UriList);
    return all;
}

bool DragData::hasFormat(const QString& format) const
{
    return (ProvideFiles_ && format == UriList) || QMimeData::hasFormat(format);
}

QVariant DragData::retrieveData(const QString& format, QMetaType type) const
{
    if (!ProvideFiles_ || format != UriList)
        return QMimeData::retrieveData(format, type);
    QVariantList urls;
    QByteArray lines;
    const QStringList paths = ProvideFiles_();
    for (const QString& path : paths) {
        const QUrl url = QUrl::fromLocalFile(path);
        urls.append(url);
        lines += url.toEncoded() + "\r\n"; // RFC 2483, 5
    }
    if (type.id() == QMetaType::QByteArray)
        return lines;
    return urls;
}

QStringList DragData::Files(const QMimeData& data)
{
    QStringList paths;
    const QList<QUrl> urls = data.urls();
    for (const QUrl& url : urls) {
        if (url.isLocalFile())
            paths.append(url.toLocalFile());
    }
    return paths;
}

bool DragData::HasFiles(const QMimeData& data)
{
    // A promise is not asked for; a link to a page is no file.
    if (const auto* own = qobject_cast<const DragData*>(&data); own && own->ProvideFiles_)
        return true;
    return !Files(data).isEmpty();
}

bool DragRunner::IsDrag(const QWidget& source, const QPointF& from, const QPointF& to)
{
    constexpr double Pixels = 5;
    return !GeneralHelper::PointsAreClose(from.x(), from.y(), to.x(), to.y(), Pixels * Twips::PerPixel(source));
}

Qt::DropAction DragRunner::Run(QWidget& source, DragData* data, Qt::DropActions allowed)
{
    if (CurrentRunner())
        return CurrentRunner()(source, data, allowed);
    auto* drag = new QDrag(&source); // Qt destroys it, and the data with it
    drag->setMimeData(data);
    return drag->exec(allowed, Qt::MoveAction);
}

void DragRunner::SetCurrent(Runner runner)
{
    CurrentRunner() = std::move(runner);
}
