// SPDX-License-Identifier: Apache-2.0
#include "InstalledDictionaries.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QMap>
#include <QSet>
#include <QStandardPaths>

namespace
{
constexpr char FoldersVariable[] = "DICPATH";
const QString RulesEnding = QStringLiteral(".aff");
const QString WordsEnding = QStringLiteral(".dic");
/// The largest that are known have 2 and 10 MB. Reading takes several times as much memory.
constexpr qint64 LargestRules = 16LL << 20;
constexpr qint64 LargestWords = 64LL << 20;

QString DictionaryWords(const char* text)
{
    return QCoreApplication::translate("InstalledDictionaries", text);
}

/// Why a file of a dictionary is none; empty when it is one. A link counts as what it leads to: dictionaries of several
/// countries are installed so.
QString WhyNoFile(const QString& path, qint64 largest)
{
    const QFileInfo file(path);
    const QString name = file.fileName();
    if (!file.exists()) {
        const QString words = file.isSymLink() ? DictionaryWords("The link %1 of the dictionary leads nowhere.")
                                               : DictionaryWords("The file %1 of the dictionary is missing.");
        return words.arg(name);
    }
    if (!file.isFile())
        return DictionaryWords("%1 is no file, so that the dictionary cannot be read.").arg(name);
    if (!file.isReadable())
        return DictionaryWords("The file %1 of the dictionary may not be read by this account.").arg(name);
    if (file.size() == 0)
        return DictionaryWords("The file %1 of the dictionary is empty.").arg(name);
    if (file.size() > largest)
        return DictionaryWords("The file %1 of the dictionary is too large to be one.").arg(name);
    return {};
}

DictionaryFiles FilesNamed(const QDir& folder, const QString& language)
{
    DictionaryFiles files{
        language, folder.filePath(language + RulesEnding), folder.filePath(language + WordsEnding), {}};
    files.Problem = WhyNoFile(files.RulesFile, LargestRules);
    if (files.Problem.isEmpty())
        files.Problem = WhyNoFile(files.WordsFile, LargestWords);
    return files;
}

/// Files for other purposes bear the same endings.
bool IsOfHyphensOrMeanings(const QString& name)
{
    return name.startsWith(QStringLiteral("hyph_")) || name.startsWith(QStringLiteral("th_"));
}
} // namespace

QString DictionaryFiles::Name() const
{
    const QLocale locale(Language);
    if (locale.language() == QLocale::C || locale.nativeLanguageName().isEmpty())
        return Language;
    const QStringList parts = Language.split(u'_');
    QString name = locale.nativeLanguageName();
    if (parts.size() > 1)
        name += QStringLiteral(" (%1)").arg(locale.nativeTerritoryName());
    // One of several that a language has.
    if (parts.size() > 2)
        name += QStringLiteral(" \u2013 ") + parts.mid(2).join(u' ');
    return name;
}

QString InstalledDictionaries::OwnFolder()
{
    return QDir(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation))
        .filePath(QStringLiteral("hunspell"));
}

QStringList InstalledDictionaries::Folders()
{
    const QString named = qEnvironmentVariable(FoldersVariable);
    if (!named.isEmpty())
        return named.split(QDir::listSeparator(), Qt::SkipEmptyParts);
    QStringList folders;
    for (const QString& data : QStandardPaths::standardLocations(QStandardPaths::GenericDataLocation)) {
        for (const char* name : {"hunspell", "myspell", "myspell/dicts"})
            folders.append(QDir(data).filePath(QLatin1String(name)));
    }
#ifdef Q_OS_UNIX
    // Also where the account's environment names other folders for data.
    folders += {QStringLiteral("/usr/share/hunspell"), QStringLiteral("/usr/share/myspell/dicts")};
    folders.removeDuplicates();
#endif
    return folders;
}

QList<DictionaryFiles> InstalledDictionaries::In(const QStringList& folders)
{
    QMap<QString, DictionaryFiles> found;
    for (const QString& name : folders) {
        const QDir folder(name);
        const QStringList entries = folder.entryList({u'*' + RulesEnding, u'*' + WordsEnding},
                                                     QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot);
        for (const QString& entry : entries) {
            const QString language = entry.chopped(RulesEnding.size());
            if (language.isEmpty() || IsOfHyphensOrMeanings(language))
                continue;
            const auto known = found.constFind(language);
            // A sound one takes the place of a damaged one.
            if (known == found.constEnd() || !known->Problem.isEmpty())
                found.insert(language, FilesNamed(folder, language));
        }
    }
    // One that several names lead to goes by the first, which is the shortest.
    QSet<QString> targets;
    QList<DictionaryFiles> dictionaries;
    for (const DictionaryFiles& files : std::as_const(found)) {
        const QString target = QFileInfo(files.WordsFile).canonicalFilePath();
        const QString key = QLocale(files.Language).name() + target;
        if (files.Problem.isEmpty() && targets.contains(key))
            continue;
        targets.insert(key);
        dictionaries.append(files);
    }
    return dictionaries;
}

QString InstalledDictionaries::LanguageFor(const QList<DictionaryFiles>& dictionaries, const QLocale& locale)
{
    if (locale.language() == QLocale::C)
        return {};
    const QLocale usual(locale.language());
    QString best;
    int bestRank = 0;
    for (const DictionaryFiles& files : dictionaries) {
        const QLocale own(files.Language);
        if (!files.Problem.isEmpty() || own.language() != locale.language() || own.script() != locale.script())
            continue;
        const int rank = own.territory() == locale.territory() ? 3 : own.territory() == usual.territory() ? 2 : 1;
        if (rank > bestRank) {
            bestRank = rank;
            best = files.Language;
        }
    }
    return best;
}
