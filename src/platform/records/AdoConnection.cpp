// SPDX-License-Identifier: Apache-2.0
#include "platform/records/DBEngine.h"
#include "platform/records/FileOpening.h"

namespace ado
{

using dao::Error;

namespace
{

const QLatin1String ProviderName("Microsoft.JET.OLEDB.4.0");
const QLatin1String DataSourceName("Data Source");
const QLatin1String LockingModeName("Jet OLEDB:Database Locking Mode");
const QLatin1String ProviderKey("Provider");

bool IsSame(const QString& left, QLatin1String right)
{
    return left.compare(right, Qt::CaseInsensitive) == 0;
}

[[noreturn]] void RaiseNoProperty(const QString& name)
{
    throw Error(dao::errItemNotFound, QStringLiteral("Item '%1' not found in this collection.").arg(name));
}

} // namespace

/// The file kept open.
class Connection::Handle
{
public:
    Handle(const QString& fileName, int lockingMode) : Session_(dao::OpenFile(fileName, false, lockingMode))
    {
        // Nothing is read or written through it: its store only showed that the file can be opened.
        Session_->LendStore();
    }
    int LockingMode() const { return Session_->Lease.LockingMode(); }

private:
    dao::SessionPtr Session_;
};

Connection::Connection() = default;
Connection::~Connection() = default;

QVariant Connection::Property(const QString& name) const
{
    if (IsSame(name, DataSourceName))
        return DataSource_;
    if (IsSame(name, LockingModeName))
        return Handle_ ? Handle_->LockingMode() : LockingMode_;
    RaiseNoProperty(name);
}

void Connection::SetProperty(const QString& name, const QVariant& value)
{
    if (Handle_)
        throw Error(dao::errNotSupported, QStringLiteral("The connection is open; its properties are fixed."));
    if (IsSame(name, DataSourceName))
        DataSource_ = value.toString();
    else if (IsSame(name, LockingModeName))
        LockingMode_ = value.toInt() == 1 ? 1 : 0;
    else
        RaiseNoProperty(name);
}

void Connection::Open(const QString& connectionString, const QString&, const QString&, int)
{
    if (Handle_)
        throw Error(dao::errNotSupported, QStringLiteral("The connection is open already."));
    const QStringList items = connectionString.split(QLatin1Char(';'), Qt::SkipEmptyParts);
    for (const QString& item : items) {
        const QString name = item.section(QLatin1Char('='), 0, 0).trimmed();
        const QString value = item.section(QLatin1Char('='), 1).trimmed();
        if (IsSame(name, ProviderKey))
            Provider_ = value;
        else
            SetProperty(name, value);
    }
    if (!Provider_.isEmpty() && !IsSame(Provider_, ProviderName)) {
        throw Error(dao::errNotSupported, QStringLiteral("The provider '%1' is not supported.").arg(Provider_));
    }
    Handle_ = std::make_unique<Handle>(DataSource_, LockingMode_);
}

void Connection::Close()
{
    if (!Handle_)
        throw Error(dao::errObjectInvalid,
                    QStringLiteral("Object invalid or no longer set: the connection is closed."));
    Handle_.reset();
}

} // namespace ado
