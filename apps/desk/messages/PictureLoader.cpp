// SPDX-License-Identifier: Apache-2.0
#include "PictureLoader.h"

#include "platform/mail/Message.h"
#include "platform/widgets/PictureReader.h"

#include <QPromise>
#include <QThreadPool>

#include <memory>

PictureLoader::PictureLoader(QObject* parent) : QObject(parent) {}

PictureLoader::~PictureLoader()
{
    Stop();
}

/// The thread sees it before its next picture; nobody waits for that.
void PictureLoader::Stop()
{
    if (!Watcher_)
        return;
    Watcher_->disconnect(this);
    Watcher_->future().cancel();
    delete std::exchange(Watcher_, nullptr);
}

void PictureLoader::Load(const QByteArray& mail, const QList<int>& files, QSize most)
{
    Stop();
    auto promise = std::make_shared<QPromise<Picture>>();
    Watcher_ = new Watcher(this);
    connect(Watcher_, &Watcher::resultReadyAt, this, [this](int place) {
        const Picture picture = Watcher_->resultAt(place);
        Q_EMIT Loaded(picture.File, picture.Image);
    });
    connect(Watcher_, &Watcher::finished, this, &PictureLoader::Finished);
    Watcher_->setFuture(promise->future());
    QThreadPool::globalInstance()->start([promise, mail, files, most] {
        promise->start();
        const cdo::Message message(mail);
        qint64 pixels = 0;
        for (const int file : files) {
            if (promise->isCanceled())
                break;
            const QByteArray octets = message.AttachmentContent(file);
            const qint64 own = PictureReader::Pixels(octets);
            if (own == 0 || pixels + own > MostPixels)
                continue;
            pixels += own;
            QImage image = PictureReader::Read(octets);
            if (image.isNull())
                continue;
            if (most.isValid() && (image.width() > most.width() || image.height() > most.height()))
                image = image.scaled(most, Qt::KeepAspectRatio, Qt::SmoothTransformation);
            promise->addResult(Picture{file, image});
        }
        promise->finish();
    });
}
