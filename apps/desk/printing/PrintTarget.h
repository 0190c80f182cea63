// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

#include <functional>
#include <memory>
#include <optional>

class QPagedPaintDevice;
class QWidget;

/// Asks the user where to print.
namespace PrintTarget
{
/// A printer for so many pages, of which the user may choose a part; null when the user cancels.
std::unique_ptr<QPagedPaintDevice> PrinterForPages(QWidget* parent, int pageCount);
/// A printer for sheets, which are printed whole and in order; null when the user cancels.
std::unique_ptr<QPagedPaintDevice> PrinterForSheets(QWidget* parent);
/// The file that the device writes instead of printing; empty for a printer.
QString FileOf(const QPagedPaintDevice& device);
/// A PDF file, by a dialog with this title that proposes this name; nothing when the user cancels.
std::optional<QString> PdfFile(const QString& title, const QString& name);

/// What answers instead of the user; it gets no number of pages when there is no choice of them. An empty one goes back
/// to the system's dialog.
using PrinterChooser = std::function<std::unique_ptr<QPagedPaintDevice>(QWidget* parent, std::optional<int> pageCount)>;
void SetPrinterChooser(PrinterChooser chooser);
} // namespace PrintTarget
