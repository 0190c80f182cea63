// SPDX-License-Identifier: Apache-2.0
#include "AddressBookReader.h"

#include "platform/directory/EmbeddedDirectory.h"
#include "platform/records/Error.h"

AddressBookReader::AddressBookReader(const EmbeddedDirectory& directory, enMsgType type, QObject* parent)
    : QObject(parent), Directory_(directory), Book_(std::make_shared<AddressBook>(type))
{
    connect(&Timer_, &QTimer::timeout, this, &AddressBookReader::Step);
}

AddressBookReader::~AddressBookReader() = default;

void AddressBookReader::Step()
{
    QList<clsKVContactPtr> contacts;
    try {
        contacts = Directory_.ContactsAfter(Last_, StepSize);
    } catch (const dao::Error& error) {
        Timer_.stop();
        Q_EMIT Failed(error.Number(), error.Description());
        return;
    }
    for (const clsKVContactPtr& contact : std::as_const(contacts))
        Book_->Take(*contact);
    if (!contacts.isEmpty()) {
        Last_ = contacts.last()->Reference;
        return;
    }
    Timer_.stop();
    Book_->Sort();
    Q_EMIT Done(Book_);
}
