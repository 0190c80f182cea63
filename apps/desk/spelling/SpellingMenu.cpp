// SPDX-License-Identifier: Apache-2.0
#include "SpellingMenu.h"

#include "Speller.h"

#include <QAction>
#include <QActionGroup>
#include <QDir>
#include <QMenu>

#include <algorithm>

SpellingMenu::SpellingMenu(QMenu& menu, Speller& speller)
    : QObject(&menu), Menu_(menu), Speller_(speller), Entries_(new QObject(this))
{
    connect(&Menu_, &QMenu::aboutToShow, this, [this] {
        Fill();
        Speller_.Look();
    });
    connect(&Speller_, &Speller::DictionariesFound, this, &SpellingMenu::Fill);
    Fill();
}

void SpellingMenu::Fill()
{
    delete Entries_;
    Entries_ = new QObject(this);
    if (!Speller_.HasLooked())
        return AddWords(tr("Looking for dictionaries..."));
    if (Speller_.Dictionaries().isEmpty())
        return AddAdvice();
    AddLanguages();
}

void SpellingMenu::AddWords(const QString& words)
{
    auto* entry = new QAction(QString(words).replace(u'&', QStringLiteral("&&")), Entries_);
    entry->setEnabled(false);
    Menu_.addAction(entry);
}

/// In lines that a menu can hold.
void SpellingMenu::AddAdvice()
{
    AddWords(tr("No dictionaries are installed."));
#ifdef Q_OS_LINUX
    AddWords(tr("On Debian, install the package of your language, such as hunspell-en-gb or hunspell-de-de."));
#endif
    AddWords(tr("Or put the .aff and .dic files of a dictionary into %1.")
                 .arg(QDir::toNativeSeparators(InstalledDictionaries::OwnFolder())));
}

void SpellingMenu::AddLanguages()
{
    auto* group = new QActionGroup(Entries_);
    const auto add = [&](const QString& text, const QString& language) {
        auto* entry = new QAction(text, Entries_);
        entry->setCheckable(true);
        entry->setChecked(Speller_.Language() == language);
        entry->setData(language);
        group->addAction(entry);
        Menu_.addAction(entry);
        connect(entry, &QAction::triggered, this, [this, language] { Speller_.SetLanguage(language); });
    };
    QList<DictionaryFiles> dictionaries = Speller_.Dictionaries();
    std::stable_sort(dictionaries.begin(), dictionaries.end(),
                     [](const auto& a, const auto& b) { return a.Name().localeAwareCompare(b.Name()) < 0; });
    for (const DictionaryFiles& files : std::as_const(dictionaries)) {
        if (files.Problem.isEmpty())
            add(files.Name().replace(u'&', QStringLiteral("&&")), files.Language);
        else
            AddWords(tr("%1: %2").arg(files.Name(), files.Problem));
    }
    add(tr("&Off"), QString());
}
