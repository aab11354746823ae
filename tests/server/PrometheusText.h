#pragma once

#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace clockwell::server::test {

/// Metrics in the text format 0.0.4 of Prometheus, read strictly: throws std::runtime_error, with the line,
/// at anything that the format does not allow, also at histograms that do not add up.
class PrometheusText
{
public:
    using Labels = std::map<std::string, std::string>;
    struct Sample
    {
        std::string name;
        Labels labels;
        double value = 0;
    };

    explicit PrometheusText(const std::string &text);

    /// Of the only sample with this name and these labels; throws std::out_of_range when there is none.
    double value(const std::string &name, const Labels &labels = {}) const;
    /// Of all samples with this name that have these labels and perhaps others.
    double sum(const std::string &name, const Labels &some) const;
    const std::map<std::string, std::string> &types() const { return m_types; } ///< by family
    const std::vector<Sample> &samples() const { return m_samples; }

private:
    void readLine(const std::string &line);
    void readComment(const std::string &line);
    void readSample(const std::string &line);
    void requireFamily(const Sample &sample) const;
    void requireHistogramsThatAddUp() const;

    std::map<std::string, std::string> m_types;
    std::set<std::string> m_helped;
    std::set<std::string> m_finished; // families behind which another one has begun
    std::string m_family;             // the one whose lines are read
    std::vector<Sample> m_samples;
    std::set<std::string> m_seen; // name and labels
};

} // namespace clockwell::server::test
