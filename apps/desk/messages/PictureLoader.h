// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QFutureWatcher>
#include <QImage>
#include <QList>
#include <QObject>
#include <QSize>

/// Reads pictures among the files of a mail on a thread of the program's pool, so that no picture, however large it
/// claims to be, holds the window. Of one mail no more is decoded than MostPixels in all; what is left out, cannot be
/// read or is no plain raster picture gives none. Nothing comes of a load that another one has taken the place of.
class PictureLoader : public QObject
{
    Q_OBJECT

public:
    static constexpr qint64 MostPixels = 120'000'000;

    explicit PictureLoader(QObject* parent);
    ~PictureLoader() override;

    /// files: by their places among the mail's attachments. most: pixels that a picture is made to fit into; none of
    /// its own for an invalid size.
    void Load(const QByteArray& mail, const QList<int>& files, QSize most);
    void Stop();

Q_SIGNALS:
    void Loaded(int file, const QImage& picture);
    /// Of those files no more come.
    void Finished();

private:
    struct Picture
    {
        int File = 0;
        QImage Image;
    };
    using Watcher = QFutureWatcher<Picture>;

    Watcher* Watcher_ = nullptr; ///< Of the last load; null for none.
};
