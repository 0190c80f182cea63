// SPDX-License-Identifier: Apache-2.0
#include "Speller.h"

#include "DeskSettings.h"
#include "Dictionary.h"
#include "OwnWords.h"

#include <QLocale>
#include <QSet>

#include <algorithm>
#include <memory>

namespace
{
/// What is remembered of a user who wants none.
const QString SpellingOff = QStringLiteral("off");
/// All words of a long day; beyond it, all are asked anew.
constexpr qsizetype MostVerdicts = 200'000;
} // namespace

/// What is done on the thread. Every call is an event of it, and every answer an event of the window's.
class Speller::Worker : public QObject
{
public:
    explicit Worker(Speller& speller) : Speller_(speller) {}

    void Look(const QStringList& folders)
    {
        if (IsLeaving())
            return;
        Answer([dictionaries = InstalledDictionaries::In(folders)](Speller& speller) {
            speller.TakeDictionaries(dictionaries);
        });
    }

    void Read(int round, const DictionaryFiles& files, const QString& ownWords)
    {
        if (IsLeaving())
            return;
        QString problem;
        Dictionary_ = Dictionary::Read(files, problem);
        if (!Dictionary_) {
            AnswerOf(round, [problem](Speller& speller) {
                speller.Use(QString());
                Q_EMIT speller.Failed(problem);
            });
            return;
        }
        for (const QString& word : OwnWords::In(ownWords, problem) + Unkept_)
            Dictionary_->Add(word);
        if (!problem.isEmpty()) {
            AnswerOf(round, [problem](Speller& speller) {
                Q_EMIT speller.Failed(tr("Your own words for the spelling could not be read: %1").arg(problem));
            });
        }
    }

    void Forget() { Dictionary_.reset(); }

    void Check(int round, const QStringList& words)
    {
        if (!Dictionary_)
            return;
        QStringList unknown;
        for (const QString& word : words) {
            if (IsLeaving())
                return;
            if (!Dictionary_->Knows(word))
                unknown.append(word);
        }
        AnswerOf(round, [words, unknown](Speller& speller) {
            for (const QString& word : words)
                speller.Verdicts_.insert(word, Verdict::Known);
            for (const QString& word : unknown)
                speller.Verdicts_.insert(word, Verdict::Unknown);
            Q_EMIT speller.Changed();
        });
    }

    void Suggest(int round, const QString& word)
    {
        if (IsLeaving())
            return;
        const QStringList suggestions = Dictionary_ ? Dictionary_->Suggestions(word, MostSuggestions) : QStringList();
        AnswerOf(round, [=](Speller& speller) { Q_EMIT speller.Suggested(word, suggestions); });
    }

    void Add(int round, const QString& file, const QString& word)
    {
        if (Dictionary_)
            Dictionary_->Add(word);
        const QString problem = OwnWords::Add(file, word);
        AnswerOf(round, [=](Speller& speller) {
            // Its capitals are known as well now, and what is joined with it.
            const QString folded = word.toCaseFolded();
            speller.Verdicts_.removeIf([&](const auto& verdict) {
                return verdict.value() == Verdict::Unknown && verdict.key().toCaseFolded().contains(folded);
            });
            Q_EMIT speller.Changed();
        });
        if (problem.isEmpty())
            return;
        // In every language, and told whichever is chosen by now.
        Unkept_.append(word);
        Answer([=](Speller& speller) {
            Q_EMIT speller.Failed(
                tr("\u201C%1\u201D is known until the desk is closed; it could not be kept: %2").arg(word, problem));
        });
    }

private:
    /// Nobody waits for answers any more.
    bool IsLeaving() const { return Speller_.IsLeaving_; }
    template <typename Take>
    void Answer(Take take)
    {
        Speller& speller = Speller_;
        QMetaObject::invokeMethod(
            &speller, [&speller, take] { take(speller); }, Qt::QueuedConnection);
    }
    template <typename Take>
    void AnswerOf(int round, Take take)
    {
        Answer([round, take](Speller& speller) {
            if (speller.Round_ == round)
                take(speller);
        });
    }

    Speller& Speller_;
    std::unique_ptr<Dictionary> Dictionary_;
    QStringList Unkept_; ///< Added, and not in the file.
};

Speller::Speller(DeskSettings& settings, QString user, QObject* parent)
    : QObject(parent), Settings_(settings), User_(std::move(user))
{
    AskTimer_.setSingleShot(true);
    connect(&AskTimer_, &QTimer::timeout, this, &Speller::Ask);
}

Speller::~Speller()
{
    // Behind the words that were added a moment ago, which are kept; all else that it was asked is left out.
    IsLeaving_ = true;
    if (Worker_)
        QMetaObject::invokeMethod(
            Worker_, [this] { Thread_.quit(); }, Qt::QueuedConnection);
    Thread_.wait();
}

void Speller::Look()
{
    if (!Worker_) {
        Worker_ = new Worker(*this);
        Worker_->moveToThread(&Thread_);
        connect(&Thread_, &QThread::finished, Worker_, &QObject::deleteLater);
        Thread_.setObjectName(QStringLiteral("spelling"));
        Thread_.start(QThread::LowPriority);
    }
    QMetaObject::invokeMethod(
        Worker_, [worker = Worker_, folders = InstalledDictionaries::Folders()] { worker->Look(folders); },
        Qt::QueuedConnection);
}

void Speller::TakeDictionaries(const QList<DictionaryFiles>& dictionaries)
{
    const bool isFirst = !HasLooked_;
    HasLooked_ = true;
    const bool isSame = Dictionaries_ == dictionaries;
    Dictionaries_ = dictionaries;
    const QString wanted = Settings_.SpellingLanguage(User_);
    const auto isThere = [&](const QString& language) {
        return std::any_of(Dictionaries_.begin(), Dictionaries_.end(),
                           [&](const DictionaryFiles& files) { return files.Language == language; });
    };
    if (Language_.isEmpty() && wanted != SpellingOff) {
        if (wanted.isEmpty())
            Use(InstalledDictionaries::LanguageFor(Dictionaries_, QLocale()));
        else if (isThere(wanted))
            Use(wanted);
        else if (isFirst)
            Q_EMIT Failed(tr("The dictionary \u201C%1\u201D is not installed any more. Choose another one in the menu "
                             "\u201CSpelling\u201D.")
                              .arg(DictionaryFiles{wanted, {}, {}, {}}.Name()));
    }
    if (isFirst || !isSame)
        Q_EMIT DictionariesFound();
}

void Speller::SetLanguage(const QString& language)
{
    Settings_.SetSpellingLanguage(User_, language.isEmpty() ? SpellingOff : language);
    Use(language);
}

void Speller::Use(const QString& language)
{
    if (language == Language_)
        return;
    Language_ = language;
    ++Round_;
    Verdicts_.clear();
    Asked_.clear();
    const auto files = std::find_if(Dictionaries_.begin(), Dictionaries_.end(),
                                    [&](const DictionaryFiles& each) { return each.Language == language; });
    if (files == Dictionaries_.end()) {
        Language_.clear();
        if (Worker_)
            QMetaObject::invokeMethod(
                Worker_, [worker = Worker_] { worker->Forget(); }, Qt::QueuedConnection);
    } else {
        QMetaObject::invokeMethod(
            Worker_,
            [worker = Worker_, round = Round_, used = *files, own = Settings_.OwnWordsFile()] {
                worker->Read(round, used, own);
            },
            Qt::QueuedConnection);
    }
    Q_EMIT Changed();
}

Speller::Verdict Speller::VerdictOn(const QString& plain)
{
    if (Language_.isEmpty())
        return Verdict::Known;
    const auto known = Verdicts_.constFind(plain);
    if (known != Verdicts_.constEnd())
        return *known;
    if (Verdicts_.size() >= MostVerdicts)
        Verdicts_.clear();
    Verdicts_.insert(plain, Verdict::Awaited);
    Asked_.append(plain);
    if (!AskTimer_.isActive())
        AskTimer_.start();
    return Verdict::Awaited;
}

void Speller::Ask()
{
    QMetaObject::invokeMethod(
        Worker_, [worker = Worker_, round = Round_, words = std::exchange(Asked_, {})] { worker->Check(round, words); },
        Qt::QueuedConnection);
}

void Speller::Suggest(const QString& plain)
{
    if (!Language_.isEmpty())
        QMetaObject::invokeMethod(
            Worker_, [worker = Worker_, round = Round_, plain] { worker->Suggest(round, plain); },
            Qt::QueuedConnection);
}

void Speller::Add(const QString& plain)
{
    if (Language_.isEmpty())
        return;
    Verdicts_.insert(plain, Verdict::Known);
    QMetaObject::invokeMethod(
        Worker_,
        [worker = Worker_, round = Round_, file = Settings_.OwnWordsFile(), plain] { worker->Add(round, file, plain); },
        Qt::QueuedConnection);
    Q_EMIT Changed();
}
