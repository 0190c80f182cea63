#include "FindText.h"

QString LiteralPattern(const QString& typed)
{
    QString pattern;
    for (const QChar character : typed) {
        if (character == u'*' || character == u'?' || character == u'#' || character == u'[')
            pattern += u'[' + QString(character) + u']';
        else if (character == u'"')
            pattern += QStringLiteral("\"\"");
        else
            pattern += character;
    }
    return pattern;
}
