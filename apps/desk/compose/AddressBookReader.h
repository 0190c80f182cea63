// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "AddressBook.h"

#include <QObject>
#include <QTimer>

#include <memory>

class EmbeddedDirectory;

/// Fills an address book from the directory while the window that wants it is in use already: in steps that nobody
/// notices, from the event loop. Reads once. The directory outlives it.
class AddressBookReader : public QObject
{
    Q_OBJECT

public:
    AddressBookReader(const EmbeddedDirectory& directory, enMsgType type, QObject* parent);
    ~AddressBookReader() override;

    /// Begins; one of the two signals follows, never from here.
    void Start() { Timer_.start(); }
    /// How many contacts a step takes.
    static constexpr int StepSize = 200;

Q_SIGNALS:
    void Done(const std::shared_ptr<const AddressBook>& book);
    /// The directory cannot be read, by its error.
    void Failed(int errorNumber, const QString& description);

private:
    void Step();

    const EmbeddedDirectory& Directory_;
    std::shared_ptr<AddressBook> Book_;
    qint32 Last_ = 0; ///< The reference of the contact that was read last.
    QTimer Timer_;
};
