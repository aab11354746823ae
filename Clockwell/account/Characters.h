#pragma once

#include <QString>
#include <QStringView>

#include <memory>

struct UBreakIterator;

namespace clockwell {

/// Steps through a text from character to character as a person counts them (extended grapheme clusters,
/// Unicode Standard Annex 29). ICU's, because Qt 6.4's finder splits surrogate pairs where a digit of an
/// Indic script follows. The text outlives it.
class Characters
{
public:
    explicit Characters(QStringView text);

    /// Where the next character ends, in UTF-16 units; negative behind the last.
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
