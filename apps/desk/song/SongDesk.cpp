// SPDX-License-Identifier: Apache-2.0
#include "SongDesk.h"

#include "DisplayText.h"
#include "common/ClockHelper.h"
#include "database/SongFile.h"
#include "messageslist/uMessagesList.h"
#include "station/DeskStation.h"
#include "window/NoticeBar.h"

#include <QAction>
#include <QFileInfo>
#include <QLabel>
#include <QLocale>
#include <QMainWindow>

namespace
{
constexpr int LongestInStatusBar = 40;
constexpr int LongestInNotice = 90;
constexpr int FillMilliseconds = 50;

QString Shortened(const QString& song, int length)
{
    return song.size() > length ? song.left(length - 1).trimmed() + u'\u2026' : song;
}

/// "14:05", with the day in front where it is not today's.
QString MomentInWords(Date universal)
{
    const QDateTime began = universal.ToDateTime(Qt::UTC).toLocalTime();
    const QDateTime now = ClockHelper::CurrentTime().ToDateTime();
    const QLocale locale;
    const QString time = locale.toString(began.time(), QStringLiteral("HH:mm"));
    return began.date() == now.date() ? time : locale.toString(began.date(), QLocale::ShortFormat) + u' ' + time;
}
} // namespace

SongDesk::SongDesk(DeskStation& station, uMessagesList& list, QMainWindow& window)
    : QObject(&window),
      Station_(station),
      List_(list),
      Notice_(new NoticeBar(QStringLiteral("song"), tr("Messages s&ince then"), &window)),
      Label_(new QLabel(&window)),
      Since_(new QAction(tr("Messages since the song &began"), &window))
{
    Notice_->setObjectName(QStringLiteral("songNotice"));
    Label_->setObjectName(QStringLiteral("song"));
    Label_->setTextFormat(Qt::PlainText);
    Label_->setContentsMargins(6, 0, 6, 0);
    Label_->hide();
    Since_->setObjectName(QStringLiteral("sinceSong"));
    Since_->setCheckable(true);
    Since_->setEnabled(false);
    connect(Since_, &QAction::triggered, this, &SongDesk::Toggle);
    connect(Notice_, &NoticeBar::ButtonClicked, this, &SongDesk::Toggle);
    LookTimer_.setInterval(LookMilliseconds);
    connect(&LookTimer_, &QTimer::timeout, this, &SongDesk::Look);
    LookTimer_.start();
    Look();
}

/// The file is read when it changed, so that a look costs one question to the file system.
void SongDesk::Look()
{
    const QString path = Station_.Database().Information().Path;
    const QString file = path.isEmpty() ? QString() : SongFile::PathOf(path);
    const QFileInfo information(file);
    const bool isThere = !file.isEmpty() && information.exists();
    const QDateTime written = isThere ? information.lastModified().toUTC() : QDateTime();
    const qint64 size = isThere ? information.size() : -1;
    if (file == File_ && written == Written_ && size == Size_)
        return;
    File_ = file;
    Written_ = written;
    Size_ = size;
    const QString song = isThere ? OneLine(Station_.Database().CurrentSongFullName()).trimmed() : QString();
    if (song != Song_) {
        Song_ = song;
        Began_ = Date::FromDateTime(written);
    }
    ShowWords();
}

void SongDesk::ShowWords()
{
    const bool isFiltered = !List_.ArrivedSince().IsNone();
    Label_->setVisible(!Song_.isEmpty());
    Label_->setText(tr("On air: %1").arg(Shortened(Song_, LongestInStatusBar)));
    Label_->setToolTip(QStringLiteral("<p>%1</p>").arg(Song_.toHtmlEscaped()));
    Since_->setEnabled(isFiltered || !Song_.isEmpty());
    Since_->setChecked(isFiltered);
    if (isFiltered) {
        Notice_->SetButton(tr("Show &every message"));
        Notice_->Show(tr("Only messages since \u201C%1\u201D began at %2.")
                          .arg(Shortened(OnShow_, LongestInNotice), MomentInWords(List_.ArrivedSince())));
        return;
    }
    Notice_->SetButton(tr("Messages s&ince then"));
    Notice_->Show(
        Song_.isEmpty()
            ? QString()
            : tr("On air: \u201C%1\u201D, since %2.").arg(Shortened(Song_, LongestInNotice), MomentInWords(Began_)));
}

void SongDesk::Toggle()
{
    // A list that is being filled takes no other question; what was pressed is not forgotten.
    if (List_.IsFilling()) {
        QTimer::singleShot(FillMilliseconds, this, &SongDesk::Toggle);
        return;
    }
    if (List_.ArrivedSince().IsNone())
        ShowSince();
    else
        ShowAll();
}

void SongDesk::ShowSince()
{
    Look();
    if (!Song_.isEmpty()) {
        OnShow_ = Song_;
        List_.SetArrivedSince(Began_);
    }
    ShowWords();
}

void SongDesk::ShowAll()
{
    List_.SetArrivedSince(Date());
    ShowWords();
}
