// SPDX-License-Identifier: Apache-2.0
// The boxes of the search window that narrow the results: by folder, kind and time, with counts; and their order.
#include "FolderPaths.h"
#include "SearchFolders.h"
#include "SearchService.h"
#include "SearchWindow.h"
#include "common/ClockHelper.h"
#include "station/DeskStation.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>

#include <algorithm>

namespace
{
/// Times that results are narrowed by.
struct Span
{
    const char* Words;
    int Days;
};
constexpr Span Spans[] = {{QT_TRANSLATE_NOOP("SearchWindow", "Last 24 hours"), 1},
                          {QT_TRANSLATE_NOOP("SearchWindow", "Last 7 days"), 7},
                          {QT_TRANSLATE_NOOP("SearchWindow", "Last 30 days"), 30},
                          {QT_TRANSLATE_NOOP("SearchWindow", "Last year"), 365}};

qint64 BeginOf(int days)
{
    constexpr qint64 SecondsOfDay = 24LL * 60 * 60;
    return ClockHelper::NowUTC().ToDateTime(Qt::UTC).toSecsSinceEpoch() - days * SecondsOfDay;
}

/// As "Inbox (12)"; nobody is told a number that is not the last one.
QString Counted(const QString& name, const SearchResult& result, qint64 count)
{
    return QStringLiteral("%1 (%2)").arg(name, result.IsCounted ? QLocale().toString(count) : QStringLiteral("\u2026"));
}

/// Puts entries with their data into a box and leaves what is chosen chosen.
void Refill(QComboBox& box, const QList<std::pair<QString, QVariant>>& entries)
{
    const QSignalBlocker blocker(box);
    const QVariant chosen = box.currentData();
    box.clear();
    for (const auto& [text, data] : entries)
        box.addItem(text, data);
    const int place = chosen.isValid() ? box.findData(chosen) : 0;
    box.setCurrentIndex(std::max(0, place));
}
} // namespace

QWidget* SearchWindow::MakeFilters()
{
    auto* row = new QWidget(this);
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    const auto add = [&](const char* name, const QString& words) {
        auto* box = new QComboBox(row);
        box->setObjectName(QLatin1String(name));
        box->setAccessibleName(words);
        box->setSizeAdjustPolicy(QComboBox::AdjustToContents);
        connect(box, &QComboBox::currentIndexChanged, this, [this] {
            IsNewQuestion_ = true;
            Ask();
        });
        layout->addWidget(box);
        return box;
    };
    Folder_ = add("searchFolder", tr("Folder"));
    Kind_ = add("searchKind", tr("Kind"));
    Time_ = add("searchTime", tr("Time"));
    Order_ = add("searchOrder", tr("Order"));
    FillFolders({});
    FillKinds({});
    FillTimes({});
    Refill(*Order_, {{tr("Newest first"), static_cast<int>(SearchOrder::NewestFirst)},
                     {tr("Best first"), static_cast<int>(SearchOrder::BestFirst)}});
    layout->addStretch(1);
    layout->addWidget(Count_);
    return row;
}

SearchOptions SearchWindow::OptionsOf(const SearchQuestion& question) const
{
    SearchOptions options;
    options.Most = MostRows;
    options.Order = static_cast<SearchOrder>(Order_->currentData().toInt());
    options.Folders = FoldersMeant(question, FolderPaths(Station_.Database().MessageCategories()));
    if (Folder_->currentData().isValid())
        options.OnlyFolder = Folder_->currentData().toInt();
    if (Kind_->currentData().isValid())
        options.OnlyKind = static_cast<SearchKind>(Kind_->currentData().toInt());
    if (Time_->currentData().isValid())
        options.OnlySince = BeginOf(Time_->currentData().toInt());
    for (const Span& span : Spans)
        options.Since.push_back(BeginOf(span.Days));
    return options;
}

bool SearchWindow::HasFilters() const
{
    return Folder_->currentData().isValid() || Kind_->currentData().isValid() || Time_->currentData().isValid();
}

void SearchWindow::FillFolders(const SearchResult& result)
{
    qint64 all = 0;
    QList<std::pair<QString, QVariant>> entries;
    const QHash<qint32, QString> paths =
        Station_.Database().IsOpen() ? FolderPaths(Station_.Database().MessageCategories()) : QHash<qint32, QString>();
    QList<qint32> folders = result.Folders.keys();
    const QVariant chosen = Folder_->currentData();
    if (chosen.isValid() && !folders.contains(chosen.toInt()))
        folders.append(chosen.toInt());
    std::sort(folders.begin(), folders.end());
    for (const qint32 folder : folders) {
        all += result.Folders.value(folder);
        entries.append({Counted(FolderPath(paths, folder), result, result.Folders.value(folder)), folder});
    }
    entries.prepend({all > 0 ? Counted(tr("All folders"), result, all) : tr("All folders"), QVariant()});
    Refill(*Folder_, entries);
}

void SearchWindow::FillKinds(const SearchResult& result)
{
    const auto entry = [&result](const QString& name, SearchKind kind) {
        return std::pair<QString, QVariant>(Counted(name, result, result.Kinds.value(kind)), static_cast<int>(kind));
    };
    Refill(*Kind_, {{tr("All kinds"), QVariant()},
                    entry(tr("E-mails"), SearchKind::Email),
                    entry(tr("Text messages"), SearchKind::SMS),
                    entry(tr("Unread"), SearchKind::Unread),
                    entry(tr("With attachments"), SearchKind::WithFiles)});
}

void SearchWindow::FillTimes(const SearchResult& result)
{
    QList<std::pair<QString, QVariant>> entries{{tr("Any time"), QVariant()}};
    for (std::size_t i = 0; i < std::size(Spans); ++i) {
        const qint64 count = i < result.Since.size() ? result.Since[i] : 0;
        entries.append({Counted(tr(Spans[i].Words), result, count), Spans[i].Days});
    }
    Refill(*Time_, entries);
}
