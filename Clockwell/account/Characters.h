#pragma once

#include <QString>
#include <QStringView>

#include <memory>

struct UBreakIterator;

namespace clockwell {

/// Iterates over the user-perceived characters of a text (extended grapheme clusters, Unicode Standard Annex
/// 29). Uses ICU, because QTextBoundaryFinder of Qt 6.4 splits surrogate pairs that are followed by a digit
/// of an Indic script. The text must outlive it.
class Characters
{
public:
    explicit Characters(QStringView text);

    /// The end of the next character, in UTF-16 units; negative after the last one.
    qsizetype next();

private:
    struct Close
    {
        void operator()(UBreakIterator *iterator) const;
    };
    std::unique_ptr<UBreakIterator, Close> m_iterator;
};

/// The first character of a text; empty for an empty text.
QString firstCharacter(QStringView text);

} // namespace clockwell
