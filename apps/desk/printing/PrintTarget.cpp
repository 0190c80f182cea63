// SPDX-License-Identifier: Apache-2.0
#include "printing/PrintTarget.h"

#include "common/FileDialog.h"
#include "window/FileChoice.h"

#include <QCoreApplication>
#include <QPrintDialog>
#include <QPrinter>

namespace
{

PrintTarget::PrinterChooser& PrinterChooserInForce()
{
    static PrintTarget::PrinterChooser chooser;
    return chooser;
}

std::unique_ptr<QPagedPaintDevice> ChoosePrinter(QWidget* parent, std::optional<int> pageCount)
{
    if (PrinterChooserInForce())
        return PrinterChooserInForce()(parent, pageCount);
    auto printer = std::make_unique<QPrinter>(QPrinter::HighResolution);
    QPrintDialog dialog(printer.get(), parent);
    dialog.setOptions(QAbstractPrintDialog::PrintToFile | QAbstractPrintDialog::PrintShowPageSize);
    if (pageCount) {
        dialog.setOption(QAbstractPrintDialog::PrintPageRange);
        dialog.setMinMax(1, *pageCount);
    }
    if (dialog.exec() != QDialog::Accepted)
        return nullptr;
    return printer;
}
} // namespace

std::unique_ptr<QPagedPaintDevice> PrintTarget::PrinterForPages(QWidget* parent, int pageCount)
{
    return ChoosePrinter(parent, pageCount);
}

std::unique_ptr<QPagedPaintDevice> PrintTarget::PrinterForSheets(QWidget* parent)
{
    return ChoosePrinter(parent, std::nullopt);
}

QString PrintTarget::FileOf(const QPagedPaintDevice& device)
{
    const auto* printer = dynamic_cast<const QPrinter*>(&device);
    return printer ? printer->outputFileName() : QString();
}

std::optional<QString> PrintTarget::PdfFile(const QString& title, const QString& name)
{
    const auto dialog = FileDialog::Create();
    dialog->DialogTitle = title;
    dialog->Filter = QCoreApplication::translate("PrintTarget", "PDF files") + QStringLiteral("|*.pdf");
    dialog->DefaultExt = QStringLiteral("pdf");
    dialog->Filename = name;
    dialog->Flags = FileDialog::OverwritePrompt | FileDialog::HideReadOnly;
    return FileChoice::ToSave(*dialog);
}

void PrintTarget::SetPrinterChooser(PrinterChooser chooser)
{
    PrinterChooserInForce() = std::move(chooser);
}
