// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/directory/clsKVContact.h"

#include <QByteArray>
#include <QList>
#include <QStringList>

/// Contacts as business card files (RFC 2426, RFC 6350, and the 2.1 form before them), for taking them over from a
/// telephone or another program, and giving them to one. Files are octets here; nothing is opened or fetched.
namespace VCard
{
enum class Version
{
    V2_1,
    V3_0,
    V4_0
};

struct Reading
{
    QList<clsKVContact> Contacts; ///< Of the cards that are whole, in the order of the file; reference 0.
    QStringList Problems;         ///< The cards that are not among them, and why, each as a sentence.
};

/// Reads a file of any of the three versions, several cards mixed. The name is the formatted one, or made of the parts
/// of the structured one; mobile is the first number of a mobile telephone, telephone the first other one, the e-mail
/// addresses are the first two, each in the order of preference. What else is worth keeping stands in other: the postal
/// address as its lines on a label, and below two empty lines, a line for each after its kind ("Home: 01736 555 019"),
/// further numbers and addresses, organisation, title, web pages, birthday; notes stand there as they are. Pictures,
/// sounds, keys and private properties are left out. A detail that is too long for the directory stands in other, too.
/// Never fails: what is cut off or empty is a problem.
Reading Read(const QByteArray& octets);

/// The cards of these contacts. Reading them gives the same contacts again, other line ends within other aside, and a
/// second e-mail address without a first becomes the first.
QByteArray Write(const QList<clsKVContact>& contacts, Version version = Version::V3_0);
} // namespace VCard
