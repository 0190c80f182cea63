// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Measure.h"

#include <QString>

/// The subjects, each with its comparisons. large: messages of the large station.
void BenchSaving(const QString& folder, int messages);
/// Saving by the station in that folder, against what saves the same parsed mails bare.
void CompareSaving(const Comparison& comparison, const QString& folder,
                   const std::function<void(int number, const QByteArray& mail)>& saveBare);
void BenchReading(const QString& largeStation, int large);
void BenchSearching(const QString& largeStation);
/// folder: where a station and a maildir of that many mails are made, unless they are there.
/// isBesideNotmuch: it indexes the same mails as a measure, in some milliseconds each.
void BenchWords(const QString& folder, int count, bool isBesideNotmuch);
void BenchHistory(const QString& largeStation);
/// large: messages of the largest collection.
void BenchTemplates(int large);
/// folder: of a small station, which is made.
void BenchListing(const QString& folder, const QString& largeStation, int large);
/// folder: of an empty station, which is made.
void BenchStart(const QString& folder, const QString& largeStation);
/// folder: of a station of prizes, which is made.
void BenchPrizes(const QString& folder);
void BenchOpening(const QString& smallStation, const QString& largeStation);
void BenchFiling(const QString& folder, int megabytes);
/// folder: where a station is made.
void BenchFilingOneMail(const QString& folder);
/// folder: where the maildir of that many mails and the stations are made.
void BenchFilingAMaildir(const QString& folder, int count);
/// A maildir of so many mails, which is made; the octets of all of them.
double MakeMaildir(const QString& folder, int count);
/// Stations in Jet files beside those in the usual format. folder: where they and a maildir are made. large: messages
/// of the large ones.
void BenchJet(const QString& folder, int large, int filed);
/// The list of messages over both.
void BenchJetListing(const QString& folder, int large);
/// folder: where the stations that are made say that they are on a server. messages: of the one that is listed.
void BenchServer(const QString& folder, int messages, int rounds);
/// folder: of a station of that size, which is made.
void BenchBackup(const QString& folder, int megabytes);
/// The other process of BenchBackup: stores messages until its input ends and prints the longest wait.
int WriteUntilTold(const QString& file);
