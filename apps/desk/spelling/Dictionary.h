// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QChar>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>

struct DictionaryFiles;

/// The words of one language in memory. Knows nothing of windows. One thread at a time may use it; reading one takes up
/// to a second.
class Dictionary
{
public:
    /// Null when the files hold no dictionary; problem says why, as a sentence for the user.
    static std::unique_ptr<Dictionary> Read(const DictionaryFiles& files, QString& problem);
    ~Dictionary();
    Dictionary(const Dictionary&) = delete;
    Dictionary& operator=(const Dictionary&) = delete;

    /// plain: as SpellingWords::Plain makes it. True also for what it cannot judge: letters of another script or that
    /// its encoding lacks.
    bool Knows(const QString& plain) const;
    /// What may have been meant, the likeliest first.
    QStringList Suggestions(const QString& plain, int most) const;
    /// Knows the word from now on, with its capitals.
    void Add(const QString& plain);

private:
    class Words;
    explicit Dictionary(std::unique_ptr<Words> words);

    bool KnowsWhole(const QString& word) const;
    bool IsOfOtherScript(const QString& word) const;

    std::unique_ptr<Words> Words_;
    std::optional<QChar::Script> Script_; ///< None where it is not known what the language is written in.
};
