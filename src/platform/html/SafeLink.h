// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

/// What an address on a page may be used for.
enum class LinkKind
{
    Safe,    ///< http, https or mailto.
    Active,  ///< A scheme that runs something or reaches into the machine: javascript, data, vbscript, file.
    Unknown, ///< Any other scheme, an address without one, or a broken one.
    Place    ///< A place on the page itself ("#top").
};

struct SafeLink
{
    LinkKind Kind = LinkKind::Unknown;
    /// The encoded address for Safe, host names in ASCII; empty otherwise.
    QString Address;
};

/// Judges an address as a careless reader would take it: control characters, blanks and invisible characters within
/// the scheme and the case of letters make no difference. Entities are decoded before.
SafeLink ReadLink(const QString& address);

/// The content id that a "cid:" address names (RFC 2392: percent-decoded, without angle brackets); empty when it is
/// another address.
QString ContentIDOf(const QString& address);
