// SPDX-License-Identifier: Apache-2.0
#include "Dictionary.h"

#include "InstalledDictionaries.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QStringDecoder>
#include <QStringEncoder>

#include <algorithm>
#include <exception>
#include <hunspell/hunspell.hxx>

namespace
{
/// Of longer words the search for others like them takes seconds.
constexpr qsizetype LongestToSuggestFor = 40;
constexpr qsizetype LongestFirstLine = 1000;

/// As the library opens files: beyond the system's own limits of names where it has such.
QByteArray FileNameOf(const QString& path)
{
#ifdef Q_OS_WIN
    return "\\\\?\\" + QDir::toNativeSeparators(QFileInfo(path).absoluteFilePath()).toUtf8();
#else
    return QFile::encodeName(path);
#endif
}

/// The name of an encoding as everybody else writes it.
QByteArray EncodingNamed(const std::string& name)
{
    QByteArray encoding = QByteArray::fromStdString(name).trimmed();
    if (encoding.startsWith("ISO8859"))
        encoding.insert(3, '-');
    else if (encoding.startsWith("microsoft-cp"))
        encoding.replace("microsoft-cp", "windows-");
    return encoding;
}

/// The first line of the words says how many there are, and room for as many is made at once: one that claims more than
/// the file can hold is damaged.
bool SaysItsSize(const QString& file)
{
    QFile words(file);
    if (!words.open(QIODevice::ReadOnly))
        return false;
    QByteArray line = words.readLine(LongestFirstLine);
    if (line.startsWith("\xEF\xBB\xBF"))
        line.remove(0, 3);
    bool isNumber = false;
    // Some name an author behind it.
    const qint64 count = line.trimmed().split(' ').constFirst().split('\t').constFirst().toLongLong(&isNumber);
    return isNumber && count > 0 && count <= words.size() && !words.atEnd();
}

/// That of the language's own name in itself.
std::optional<QChar::Script> ScriptOf(const QString& language)
{
    for (const QChar character : QLocale(language).nativeLanguageName()) {
        if (character.isLetter())
            return character.script();
    }
    return std::nullopt;
}
} // namespace

/// The library's dictionary behind its encoding.
class Dictionary::Words
{
public:
    explicit Words(const DictionaryFiles& files)
        : Library_(FileNameOf(files.RulesFile).constData(), FileNameOf(files.WordsFile).constData()),
          Encoder_(EncodingNamed(Library_.get_dict_encoding()).constData()),
          Decoder_(EncodingNamed(Library_.get_dict_encoding()).constData())
    {
    }

    bool HasEncoding() const { return Encoder_.isValid() && Decoder_.isValid(); }
    /// None where the encoding lacks one of its letters.
    std::optional<std::string> Encoded(const QString& word)
    {
        Encoder_.resetState();
        const QByteArray octets = Encoder_.encode(word);
        if (Decoded(octets) != word)
            return std::nullopt;
        return octets.toStdString();
    }
    QString Decoded(const QByteArray& octets)
    {
        Decoder_.resetState();
        return Decoder_.decode(octets);
    }
    Hunspell& Library() { return Library_; }

private:
    Hunspell Library_;
    QStringEncoder Encoder_;
    QStringDecoder Decoder_;
};

std::unique_ptr<Dictionary> Dictionary::Read(const DictionaryFiles& files, QString& problem)
{
    const auto say = [&](const char* words) {
        problem = QCoreApplication::translate("Dictionary", words).arg(files.Name());
        return nullptr;
    };
    if (!files.Problem.isEmpty()) {
        problem = files.Problem;
        return nullptr;
    }
    if (!SaysItsSize(files.WordsFile))
        return say("The dictionary \u201C%1\u201D is damaged: install it again.");
    try {
        auto words = std::make_unique<Words>(files);
        if (!words->HasEncoding())
            return say("The dictionary \u201C%1\u201D is in an encoding that this computer does not know.");
        std::unique_ptr<Dictionary> dictionary(new Dictionary(std::move(words)));
        dictionary->Script_ = ScriptOf(files.Language);
        return dictionary;
    } catch (const std::exception&) {
        return say("The dictionary \u201C%1\u201D cannot be read: install it again.");
    }
}

Dictionary::Dictionary(std::unique_ptr<Words> words) : Words_(std::move(words)) {}

Dictionary::~Dictionary() = default;

bool Dictionary::IsOfOtherScript(const QString& word) const
{
    if (!Script_)
        return false;
    const QList<uint> letters = word.toUcs4();
    return std::any_of(letters.begin(), letters.end(), [this](char32_t letter) {
        const QChar::Script script = QChar::script(letter);
        return QChar::isLetter(letter) && script != *Script_ && script != QChar::Script_Inherited;
    });
}

bool Dictionary::KnowsWhole(const QString& word) const
{
    const std::optional<std::string> encoded = Words_->Encoded(word);
    return !encoded || Words_->Library().spell(*encoded);
}

bool Dictionary::Knows(const QString& plain) const
{
    if (IsOfOtherScript(plain) || KnowsWhole(plain))
        return true;
    if (plain.contains(u'\'')) {
        QString curly = plain;
        curly.replace(u'\'', u'\u2019');
        const std::optional<std::string> encoded = Words_->Encoded(curly);
        if (encoded && Words_->Library().spell(*encoded))
            return true;
    }
    if (!plain.contains(u'-'))
        return false;
    const QStringList parts = plain.split(u'-', Qt::SkipEmptyParts);
    return std::all_of(parts.begin(), parts.end(),
                       [this](const QString& part) { return part.size() < 2 || Knows(part); });
}

QStringList Dictionary::Suggestions(const QString& plain, int most) const
{
    const std::optional<std::string> encoded = Words_->Encoded(plain);
    if (!encoded || plain.size() > LongestToSuggestFor)
        return {};
    QStringList suggestions;
    for (const std::string& suggestion : Words_->Library().suggest(*encoded)) {
        if (suggestions.size() == most)
            break;
        suggestions.append(Words_->Decoded(QByteArray::fromStdString(suggestion)));
    }
    return suggestions;
}

void Dictionary::Add(const QString& plain)
{
    if (const std::optional<std::string> encoded = Words_->Encoded(plain))
        Words_->Library().add(*encoded);
}
