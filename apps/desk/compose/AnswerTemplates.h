// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QStringList>

class DeskStation;
struct Composition;

/// Texts for answers that come again and again, and signatures: the files "Answer-NAME.txt", "Signature-USER.txt" and
/// "Signature.txt" in the station's template folder, which all its computers share. Plain text; tags in it stand for
/// what is known of the answer.
namespace AnswerTemplates
{
/// What people read of those there are, by name.
QStringList Names(DeskStation& station);
/// The template with its tags filled in for that answer. Failure in words when it cannot be read.
QString Filled(DeskStation& station, const QString& name, const Composition& answer);

/// The composition with the user's signature, or else the station's, where the writer begins: above what is quoted. A
/// text message gets none, and so does one where there is no such file. problem: why one that is there could not be
/// read, in words.
Composition WithSignature(DeskStation& station, Composition composition, QString& problem);
} // namespace AnswerTemplates
