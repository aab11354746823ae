#include "PrometheusText.h"

#include <cmath>
#include <limits>
#include <regex>
#include <sstream>

namespace clockwell::server::test {

namespace {

const std::string nameForm = "[a-zA-Z_:][a-zA-Z0-9_:]*";

void fail(const std::string &why, const std::string &line)
{
    throw std::runtime_error{why + ": " + line};
}

double numberOf(const std::string &text, const std::string &line)
{
    if (text == "+Inf" || text == "-Inf")
        return (text.front() == '-' ? -1 : 1) * std::numeric_limits<double>::infinity();
    if (text == "NaN")
        return std::numeric_limits<double>::quiet_NaN();
    static const std::regex form{"[-+]?([0-9]+(\\.[0-9]*)?|\\.[0-9]+)([eE][-+]?[0-9]+)?"};
    if (!std::regex_match(text, form))
        fail("no number", line);
    return std::stod(text);
}

/// Undoes the escapes of a label's value, of which there are three.
std::string unescaped(const std::string &text, const std::string &line)
{
    std::string value;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] != '\\') {
            value += text[at];
            continue;
        }
        const char escape = ++at < text.size() ? text[at] : '\0';
        if (escape != '\\' && escape != '"' && escape != 'n')
            fail("wrong escape", line);
        value += escape == 'n' ? '\n' : escape;
    }
    return value;
}

PrometheusText::Labels labelsOf(std::string text, const std::string &line)
{
    static const std::regex form{"([a-zA-Z_][a-zA-Z0-9_]*)=\"((?:[^\"\\\\]|\\\\.)*)\"(,|$)"};
    PrometheusText::Labels labels;
    while (!text.empty()) {
        std::smatch match;
        if (!std::regex_search(text, match, form, std::regex_constants::match_continuous))
            fail("wrong labels", line);
        if (!labels.emplace(match[1], unescaped(match[2], line)).second)
            fail("label given twice", line);
        text = match.suffix();
    }
    return labels;
}

std::string withoutSuffix(const std::string &name, const std::string &suffix)
{
    return name.ends_with(suffix) ? name.substr(0, name.size() - suffix.size()) : std::string{};
}

} // namespace

PrometheusText::PrometheusText(const std::string &text)
{
    if (!text.ends_with('\n'))
        fail("the last line does not end", text);
    std::istringstream lines{text};
    for (std::string line; std::getline(lines, line);)
        readLine(line);
    requireHistogramsThatAddUp();
}

void PrometheusText::readLine(const std::string &line)
{
    if (line.empty())
        return;
    line.starts_with('#') ? readComment(line) : readSample(line);
}

void PrometheusText::readComment(const std::string &line)
{
    static const std::regex help{"# HELP (" + nameForm + ") (?:[^\\\\]|\\\\[\\\\n])*"};
    static const std::regex type{"# TYPE (" + nameForm + ") (counter|gauge|histogram|summary|untyped)"};
    std::smatch match;
    const bool isHelp = std::regex_match(line, match, help);
    if (!isHelp && !std::regex_match(line, match, type))
        fail("neither HELP nor TYPE", line);
    if (m_family != match[1]) {
        m_finished.insert(m_family);
        m_family = match[1];
    }
    if (m_finished.contains(m_family))
        fail("family in two places", line);
    if (!m_samples.empty() && m_seen.contains(m_family))
        fail("comment behind samples", line);
    if (!(isHelp ? m_helped.insert(m_family).second : m_types.emplace(m_family, match[2]).second))
        fail("comment given twice", line);
}

void PrometheusText::readSample(const std::string &line)
{
    static const std::regex form{"(" + nameForm + ")(?:\\{(.*)\\})? ([^ ]+)( -?[0-9]+)?"};
    std::smatch match;
    if (!std::regex_match(line, match, form))
        fail("no sample", line);
    Sample sample{match[1], labelsOf(match[2], line), numberOf(match[3], line)};
    requireFamily(sample);
    m_seen.insert(m_family);
    std::string key = sample.name;
    for (const auto &[name, value] : sample.labels)
        key += '\n' + name + '\n' + value;
    if (!m_seen.insert(key + '\n').second)
        fail("series given twice", line);
    m_samples.push_back(std::move(sample));
}

/// A sample stands behind HELP and TYPE of its family.
void PrometheusText::requireFamily(const Sample &sample) const
{
    const auto type = m_types.find(m_family);
    if (type == m_types.end() || !m_helped.contains(m_family))
        fail("no HELP and TYPE before", sample.name);
    bool belongs = type->second != "histogram" && sample.name == m_family;
    if (type->second == "histogram")
        for (const char *suffix : {"_bucket", "_sum", "_count"})
            belongs = belongs || withoutSuffix(sample.name, suffix) == m_family;
    if (!belongs)
        fail("sample of another family", sample.name);
    if (sample.labels.contains("le") != sample.name.ends_with("_bucket"))
        fail("le is for buckets", sample.name);
    if (type->second == "counter" && !(sample.value >= 0))
        fail("counter below zero", sample.name);
}

void PrometheusText::requireHistogramsThatAddUp() const
{
    std::map<std::pair<std::string, Labels>, std::pair<double, double>> last; // limit and value of a bucket
    for (const Sample &sample : m_samples) {
        const std::string family = withoutSuffix(sample.name, "_bucket");
        if (family.empty())
            continue;
        Labels others = sample.labels;
        others.erase("le");
        const double limit = numberOf(sample.labels.at("le"), sample.name);
        const auto [entry, isFirst] = last.try_emplace({family, others}, limit, sample.value);
        if (!isFirst && (limit <= entry->second.first || sample.value < entry->second.second))
            fail("buckets do not rise", sample.name);
        entry->second = {limit, sample.value};
    }
    for (const auto &[series, bucket] : last) {
        if (!std::isinf(bucket.first))
            fail("no bucket for all", series.first);
        if (value(series.first + "_count", series.second) != bucket.second)
            fail("count is not that of all", series.first);
        value(series.first + "_sum", series.second);
    }
}

double PrometheusText::value(const std::string &name, const Labels &labels) const
{
    for (const Sample &sample : m_samples)
        if (sample.name == name && sample.labels == labels)
            return sample.value;
    throw std::out_of_range{"no sample " + name};
}

double PrometheusText::sum(const std::string &name, const Labels &some) const
{
    double total = 0;
    for (const Sample &sample : m_samples) {
        bool fits = sample.name == name;
        for (const auto &[key, value] : some)
            fits = fits && sample.labels.contains(key) && sample.labels.at(key) == value;
        total += fits ? sample.value : 0;
    }
    return total;
}

} // namespace clockwell::server::test
