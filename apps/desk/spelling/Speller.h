// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "InstalledDictionaries.h"

#include <QHash>
#include <QObject>
#include <QThread>
#include <QTimer>

#include <atomic>

class DeskSettings;

/// The spelling of one desk: which language is chosen, and what its dictionary says of words. The dictionary is read
/// and asked on a thread of its own, so that neither holds a window; what it said is remembered. Windows ask again when
/// Changed comes. Owned by the main window; the settings outlive it.
class Speller : public QObject
{
    Q_OBJECT

public:
    /// user: whose choice of a language counts; the words of one's own are the account's.
    Speller(DeskSettings& settings, QString user, QObject* parent = nullptr);
    ~Speller() override;

    /// Looks which dictionaries there are; not before somebody writes. DictionariesFound follows where they
    /// are others than before.
    void Look();
    bool HasLooked() const { return HasLooked_; }
    const QList<DictionaryFiles>& Dictionaries() const { return Dictionaries_; }

    /// Empty when it is off, or there is no dictionary.
    const QString& Language() const { return Language_; }
    /// Chosen by the user, and remembered; empty for off.
    void SetLanguage(const QString& language);

    enum class Verdict
    {
        Known, ///< Also while it is off.
        Unknown,
        Awaited ///< Changed comes with the answer.
    };
    /// plain: as SpellingWords::Plain makes it.
    Verdict VerdictOn(const QString& plain);
    /// Suggested comes with the answer.
    void Suggest(const QString& plain);
    /// Puts it among the user's own words.
    void Add(const QString& plain);

    static constexpr int MostSuggestions = 5;

Q_SIGNALS:
    void DictionariesFound();
    /// Verdicts are others, or have come.
    void Changed();
    void Suggested(const QString& plain, const QStringList& suggestions);
    /// What went wrong, and what to do.
    void Failed(const QString& words);

private:
    class Worker;

    void TakeDictionaries(const QList<DictionaryFiles>& dictionaries);
    void Use(const QString& language);
    void Ask();

    DeskSettings& Settings_;
    QString User_;
    QThread Thread_;
    std::atomic<bool> IsLeaving_ = false;
    Worker* Worker_ = nullptr; ///< On its thread; deleted there.
    QList<DictionaryFiles> Dictionaries_;
    bool HasLooked_ = false;
    QString Language_;
    int Round_ = 0; ///< Of the language: answers of an earlier one are nobody's.
    QHash<QString, Verdict> Verdicts_;
    QStringList Asked_; ///< For the next question.
    QTimer AskTimer_;
};
