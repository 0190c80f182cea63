// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

/// A whole page as it may be given to a browser or a printer.
struct SafeDocument
{
    QString Html;
    qsizetype RemoteContent = 0; ///< Pictures, style sheets, frames and the like that would have been fetched.
    qsizetype ActiveContent = 0; ///< Scripts, event attributes, forms and links that run code.
    qsizetype FlatTables = 0;    ///< Tables within tables that are paragraphs; the page's last line says so.
    bool IsTextOnly = false;     ///< The page is built to be too much work; its text alone is here.
};

/// The page with its own look kept and everything gone that runs, fetches or sends: it is parsed as HTML5 and written
/// anew from lists of what may stand on it. The style sheets of its head stay, as StyleFilter leaves them; one within
/// the body goes, since only who wrote the page puts something into its head. Pictures are "data:" ones of PNG, JPEG or
/// GIF; links keep http, https, mailto and places on the page. A content security policy that forbids the rest stands
/// first. Tables that cost too much to lay out become paragraphs (TableBudget). Never throws on any input.
SafeDocument MakeDocumentSafe(const QString& html);

/// Whether it is the address of a picture that stands within the page itself.
bool IsPictureWithin(const QString& address);
/// The octets of such a picture; empty when it is none.
QByteArray PictureWithin(const QString& address);
/// The address of a picture of these octets; empty for what is no PNG, JPEG or GIF.
QString AddressOfPicture(const QByteArray& octets);
