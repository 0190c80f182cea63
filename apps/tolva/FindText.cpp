// SPDX-License-Identifier: Apache-2.0
#include "FindText.h"

#include "common/SearchFold.h"

QString LiteralPattern(const QString& typed)
{
    QString pattern;
    for (const QChar character : typed) {
        const QString forms = SearchFold::FormsOfMark(SearchFold::KeyboardMark(character));
        if (forms.size() > 1)
            pattern += u'[' + QString(forms).replace(u'"', QStringLiteral("\"\"")) + u']';
        else if (character == u'*' || character == u'?' || character == u'#' || character == u'[')
            pattern += u'[' + QString(character) + u']';
        else
            pattern += character;
    }
    return pattern;
}
