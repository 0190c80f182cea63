// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/jet/Catalogue.h"
#include "platform/records/engines/jet/DataPage.h"
#include "platform/records/engines/jet/FileCheck.h"
#include "platform/records/engines/jet/IndexTree.h"
#include "platform/records/engines/jet/JetFixture.h"
#include "platform/records/engines/jet/PageLayout.h"
#include "platform/records/engines/jet/TableScan.h"
#include "platform/records/engines/jet/UsageMap.h"

#include <QElapsedTimer>

using namespace dao;
using namespace dao::jet;

namespace
{

/// A sound file, and places in it at which something is planted.
class JetCheck : public JetFixture
{
protected:
    void SetUp() override
    {
        MakeMessages();
        AddMessages(300);
        WriteAsJet(Path(QStringLiteral("Source.mdb")), JetName());
        Octets_ = OctetsOf(JetName());
        File_ = std::make_unique<PageFile>(JetName());
        for (const CatalogueObject& object : ReadCatalogue(*File_)) {
            if (object.Name == QStringLiteral("Messages"))
                Table_ = ReadTableDefinition(*File_, object.Definition());
        }
        ASSERT_EQ(Table_.Columns.size(), 12U);
        ASSERT_EQ(ExamineFile(JetName(), {}).Verdict, FileReport::State::Sound);
    }

    char& At(quint32 page, qsizetype offset) { return Octets_.data()[qsizetype(page) * PageSize + offset]; }
    quint16 U16At(quint32 page, qsizetype offset) { return qFromLittleEndian<quint16>(&At(page, offset)); }
    void Put16(quint32 page, qsizetype offset, quint16 number) { qToLittleEndian(number, &At(page, offset)); }
    void Put32(quint32 page, qsizetype offset, quint32 number) { qToLittleEndian(number, &At(page, offset)); }

    FileReport Examined()
    {
        SetOctets(JetName(), Octets_);
        return ExamineFile(JetName(), {});
    }
    /// What was planted is told in these words, with this verdict.
    void ExpectFound(FileReport::State verdict, const QString& words)
    {
        const FileReport report = Examined();
        EXPECT_EQ(report.Verdict, verdict) << qPrintable(report.Faults.join(u'\n'));
        EXPECT_TRUE(report.Faults.join(u'\n').contains(words)) << qPrintable(report.Faults.join(u'\n'));
    }

    const IndexDefinition& IndexNamed(const QString& name)
    {
        for (const IndexName& each : Table_.IndexNames) {
            if (each.Name == name)
                return Table_.Indexes[each.Tree];
        }
        throw std::invalid_argument("no such index");
    }
    /// The leaves of an index, in order.
    std::vector<quint32> Leaves(const QString& name)
    {
        IndexTree tree(*File_, IndexNamed(name).Root);
        std::vector<quint32> leaves;
        for (auto place = tree.First(); place; place = tree.Next(*place)) {
            if (leaves.empty() || leaves.back() != place->Leaf)
                leaves.push_back(place->Leaf);
        }
        return leaves;
    }
    RowPlace RowNumber(int number)
    {
        TableScan scan(*File_, Table_);
        auto place = scan.Next({});
        for (int i = 0; i < number; ++i)
            place = scan.Next(place);
        return *place;
    }
    qsizetype SlotOf(RowPlace place) { return RowPageLayout::SlotsAt + RowPageLayout::SlotSize * qsizetype(place.Row); }
    /// Turns a page's bit over in a map.
    void FlipInMap(quint32 pointer, quint32 page)
    {
        const RowPlace place = RowPlace::FromPointer(pointer);
        const DataPage::Slot slot = DataPage(*File_, place.Page).SlotAt(place.Row);
        const quint32 first = qFromLittleEndian<quint32>(&At(place.Page, slot.Start + 1));
        char& octet = At(place.Page, slot.Start + 5 + (page - first) / 8);
        octet = static_cast<char>(octet ^ 1 << ((page - first) % 8));
    }
    quint32 PageOfMap(quint32 pointer, std::size_t number) { return ReadUsageMap(*File_, pointer).Pages.at(number); }

    QByteArray Octets_;
    std::unique_ptr<PageFile> File_;
    TableDefinition Table_;
};

constexpr auto Repairable = FileReport::State::Repairable;
constexpr auto Damaged = FileReport::State::Damaged;

} // namespace

TEST_F(JetCheck, FindsAChangedOctetOfAKey)
{
    const quint32 leaf = Leaves(QStringLiteral("Main")).back();
    // The lowest octet of the last number, which stays the last one.
    const int end = IndexEntriesAt + IndexPage(*File_, leaf).OctetsOfEntries();
    ++At(leaf, end - 5);
    ExpectFound(Repairable, QStringLiteral("has another key for row"));
}

TEST_F(JetCheck, FindsADeletedRowWhoseKeysLive)
{
    const RowPlace place = RowNumber(7);
    Put16(place.Page, SlotOf(place), U16At(place.Page, SlotOf(place)) | RowDeleted);
    ExpectFound(
        Repairable,
        QStringLiteral("has an entry for row %1 of page %2, which is not there").arg(place.Row).arg(place.Page));
}

TEST_F(JetCheck, FindsAWrongCountOfRows)
{
    Put32(Table_.Page(), 16, 299);
    ExpectFound(Repairable, QStringLiteral("The table Messages is said to have 299 rows and has 300"));
}

TEST_F(JetCheck, FindsAWrongLinkBetweenLeaves)
{
    const std::vector<quint32> leaves = Leaves(QStringLiteral("Key"));
    ASSERT_GT(leaves.size(), 1U);
    Put32(leaves[1], 12, leaves[1]);
    ExpectFound(Repairable, QStringLiteral("not linked as they follow each other, at page %1").arg(leaves[1]));
}

TEST_F(JetCheck, FindsAWrongLengthOfWhatKeysShare)
{
    const quint32 leaf = Leaves(QStringLiteral("Main")).front();
    ASSERT_GT(U16At(leaf, 24), 1);
    Put16(leaf, 24, static_cast<quint16>(U16At(leaf, 24) - 1));
    ExpectFound(Repairable, QStringLiteral("The index Main of the table Messages"));
}

TEST_F(JetCheck, FindsAPageThatIsMissingInItsMap)
{
    const quint32 page = PageOfMap(Table_.OwnedMap, 1);
    FlipInMap(Table_.OwnedMap, page);
    ExpectFound(Repairable, QStringLiteral("of page %1, which is not there").arg(page));
}

TEST_F(JetCheck, FindsAnIndexedTextThatWasChangedInItsRow)
{
    const QByteArray text = "Unmistakable";
    Source().Execute(QStringLiteral("UPDATE Messages SET Subject = 'Unmistakable' WHERE Ref = 20"));
    WriteAsJet(Path(QStringLiteral("Source.mdb")), JetName());
    Octets_ = OctetsOf(JetName());
    ASSERT_EQ(Octets_.count(text), 1);
    Octets_[Octets_.indexOf(text)] = 'X';
    ExpectFound(Repairable, QStringLiteral("The index Subject of the table Messages has another key for row"));
}

TEST_F(JetCheck, FindsAPageWithTwoOwners)
{
    const quint32 page = PageOfMap(IndexNamed(QStringLiteral("Key")).Map, 1);
    FlipInMap(IndexNamed(QStringLiteral("Subject")).Map, page);
    ExpectFound(Damaged, QStringLiteral("page %1 belongs to").arg(page));
}

TEST_F(JetCheck, FindsAUsedPageThatIsMarkedAsFree)
{
    const quint32 page = PageOfMap(Table_.OwnedMap, 1);
    const RowPlace map = RowPlace::FromPointer(GlobalMapPointer);
    const DataPage::Slot slot = DataPage(*File_, map.Page).SlotAt(map.Row);
    const quint32 bitmap = qFromLittleEndian<quint32>(&At(map.Page, slot.Start + 1));
    const bool isInline = At(map.Page, slot.Start) == 0;
    char& octet = isInline ? At(map.Page, slot.Start + 5 + page / 8) : At(bitmap, 4 + page / 8);
    octet = static_cast<char>(octet | 1 << (page % 8));
    ExpectFound(Damaged, QStringLiteral("page %1 belongs to the table Messages and is marked as free").arg(page));
}

TEST_F(JetCheck, FindsARowThatNobodyLeadsTo)
{
    const RowPlace place = RowNumber(9);
    Put16(place.Page, SlotOf(place), U16At(place.Page, SlotOf(place)) | RowHidden);
    ExpectFound(Damaged, QStringLiteral("is hidden, and nothing leads to it"));
}

TEST_F(JetCheck, FindsARowThatOverlapsAnother)
{
    const RowPlace place = RowNumber(3);
    Put16(place.Page, SlotOf(place), PageSize - 2);
    ExpectFound(Damaged, QStringLiteral("does not lie where rows may"));
}

TEST_F(JetCheck, FindsALongValueWhosePiecesAreARingOrGivenUp)
{
    const ColumnDefinition& body = *Table_.ColumnNamed(QStringLiteral("Body"));
    int rings = 0;
    for (const quint32 number : ReadUsageMap(*File_, body.OwnedMap).Pages) {
        const DataPage page(*File_, number);
        const DataPage::Slot slot = page.SlotAt(0);
        if (slot.End - slot.Start == LargestLongRow) {
            Put32(number, slot.Start, number << 8);
            ++rings;
        }
    }
    ASSERT_GT(rings, 0);
    const FileReport report = Examined();
    EXPECT_EQ(report.Verdict, Damaged);
    ASSERT_FALSE(report.Memos.isEmpty());
    EXPECT_EQ(report.Memos.first().Field, QStringLiteral("Body"));
}

TEST_F(JetCheck, FindsAFileThatWasCut)
{
    Octets_.chop(PageSize / 2);
    ExpectFound(Damaged, QStringLiteral("a part of it is missing"));
}

TEST_F(JetCheck, FindsAFileThatWasCutInItsMapOfFreePages)
{
    // So large that the map does not fit its row.
    const auto rows = Source().OpenRecordset(QStringLiteral("Messages"), dbOpenTable);
    rows->AddNew();
    rows->SetCollect(QStringLiteral("Body"), QString(1'500'000, u'x'));
    rows->Update();
    const QString name = Path(QStringLiteral("Large.mdb"));
    WriteAsJet(Path(QStringLiteral("Source.mdb")), name);
    const std::vector<quint32> maps = ReadUsageMap(*std::make_unique<PageFile>(name), GlobalMapPointer).BitmapPages;
    ASSERT_FALSE(maps.empty());
    SetOctets(name, OctetsOf(name).first(qsizetype(maps.back()) * PageSize + PageSize / 2));
    const FileReport report = ExamineFile(name, {});
    EXPECT_EQ(report.Verdict, FileReport::State::Damaged);
    EXPECT_TRUE(report.Faults.join(u'\n').contains(QStringLiteral("a part of it is missing")));
}

TEST_F(JetCheck, CopiesASoundFileAndRefusesADamagedOne)
{
    const QString copy = Path(QStringLiteral("Copy.mdb"));
    DBEngine::CopyDatabase(JetName(), copy, {});
    EXPECT_EQ(OctetsOf(copy), Octets_);
    const RowPlace place = RowNumber(9);
    Put16(place.Page, SlotOf(place), U16At(place.Page, SlotOf(place)) | RowHidden);
    SetOctets(JetName(), Octets_);
    const QString second = Path(QStringLiteral("Second.mdb"));
    EXPECT_EQ(::ErrorNumberOf([&] { DBEngine::CopyDatabase(JetName(), second, {}); }), errFileDamaged);
    EXPECT_FALSE(QFile::exists(second));
}

namespace
{

/// Reads whatever can be read of a file, by every index, and asks for it by a query.
void ReadEverything(const QString& name)
{
    const auto attempt = [](const std::function<void()>& part) {
        try {
            part();
        } catch (const Error&) {
            // What is damaged is refused in words; the rest has to go on.
        }
    };
    std::unique_ptr<Database> database;
    attempt([&] { database = DBEngine::OpenDatabase(name); });
    if (!database)
        return;
    for (const char* index : {"", "Main", "Subject", "Key", "When"})
        attempt([&] { AllRows(*database, QStringLiteral("Messages"), QString::fromLatin1(index)); });
    attempt([&] {
        database->OpenRecordset(QStringLiteral("SELECT Ref, Body FROM Messages WHERE Key LIKE '*a*' ORDER BY Subject"));
    });
    attempt([&] {
        const auto recordset = database->OpenRecordset(QStringLiteral("Messages"), dbOpenTable);
        recordset->SetIndex(QStringLiteral("Key"));
        recordset->Seek(SeekComparison::LessOrEqual, {QStringLiteral("m")});
        for (int i = 0; i < 500 && !recordset->NoMatch() && !recordset->AtBOF(); ++i)
            recordset->MovePrevious();
    });
}

} // namespace

TEST_F(JetCheck, EndsOnAnyFileAndSoDoesReading)
{
    const int rounds =
        qEnvironmentVariableIsSet("TOLVA_MUTATIONS") ? qEnvironmentVariableIntValue("TOLVA_MUTATIONS") : 300;
    Source().Execute(QStringLiteral("DELETE FROM Messages WHERE Ref > 60"));
    WriteAsJet(Path(QStringLiteral("Source.mdb")), JetName());
    const QByteArray sound = OctetsOf(JetName());
    const auto pages = static_cast<quint32>(sound.size() / PageSize);
    const auto below = [this](qsizetype limit) {
        return static_cast<qsizetype>(Random_() % static_cast<unsigned long>(limit));
    };
    qint64 longest = 0;
    int found = 0;
    for (int round = 0; round < rounds; ++round) {
        Octets_ = sound;
        for (qsizetype change = 0; change < 1 + round % 8; ++change) {
            const auto page = static_cast<quint32>(below(pages));
            switch (Random_() % 4) {
            case 0: // Anything anywhere.
                At(page, below(PageSize)) = static_cast<char>(Random_());
                break;
            case 1: // Where a page's header and row slots stand.
                At(page, below(64)) = static_cast<char>(Random_());
                break;
            case 2: // A number that names a page of the file.
                Put32(page, below(PageSize - 4), static_cast<quint32>(below(pages)));
                break;
            default: // A page in the place of another.
                std::memcpy(&At(page, 0), sound.constData() + below(pages) * PageSize, PageSize);
                break;
            }
        }
        QElapsedTimer timer;
        timer.start();
        found += static_cast<int>(::ErrorNumberOf([&] {
                                      if (Examined().Verdict != FileReport::State::Sound)
                                          throw Error(errFileDamaged, QString());
                                  }) != 0);
        ReadEverything(JetName());
        longest = std::max(longest, timer.elapsed());
    }
    EXPECT_GT(found, rounds / 3) << "a check that finds next to nothing";
    EXPECT_LT(longest, 10000) << "milliseconds for one file of " << sound.size() << " octets";
    RecordProperty("longestMilliseconds", static_cast<int>(longest));
    RecordProperty("found", found);
}
