#include "ContactSaving.h"

#include "ContactDuplicates.h"
#include "ContactForm.h"
#include "Words.h"
#include "common/UserInterface.h"

#include <QCoreApplication>

namespace
{
QString Tr(const char* text)
{
    return QCoreApplication::translate("ContactSaving", text);
}

bool WantsToSaveAllTheSame(const clsKVContact& known, const QString& detail)
{
    MessageBoxRequest request;
    request.Text = Tr("%1 has %2 already. Save another contact with it?").arg(known.Name, detail);
    request.Buttons = MessageBoxButtons::YesNo;
    request.Icon = MessageBoxIcon::Question;
    request.DefaultAnswer = MessageBoxAnswer::No;
    return UserInterface::Current().MessageBox(request) == MessageBoxAnswer::Yes;
}
} // namespace

QString ContactSaving::WordsOf(const dao::Error& error)
{
    return Tr("The directory of contacts says: %1").arg(error.Description());
}

bool ContactSaving::SaveNew(EmbeddedDirectory& directory, ContactForm& form, clsKVContact& saved)
{
    const QString problem = form.TakeProblem();
    if (!problem.isEmpty()) {
        Words::Warn(problem);
        return false;
    }
    clsKVContact contact = form.Contact();
    contact.Reference = 0;
    try {
        const ContactDuplicates::Match match = ContactDuplicates::FindIn(directory, contact);
        if (match.Contact && !WantsToSaveAllTheSame(*match.Contact, match.Detail))
            return false;
        directory.SaveContact(contact);
    } catch (const dao::Error& error) {
        Words::Warn(WordsOf(error));
        return false;
    }
    saved = contact;
    return true;
}
