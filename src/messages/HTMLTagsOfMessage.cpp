// SPDX-License-Identifier: Apache-2.0
#include "messages/HTMLTags.h"
#include "messages/cMessage.h"

QString cMessage::ProcessHTMLTags(const QString& strTemplate, qint32 flags) const
{
    return HTMLTags(*this, flags).Fill(strTemplate);
}
