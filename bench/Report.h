#pragma once

#include "Pairing.h"

#include <QJsonArray>
#include <QString>

#include <optional>

namespace Bench {

/// One thing that was measured and how far it may go.
struct Figure
{
    QString goal; ///< "P1"
    QString name; ///< of the case: "3 faces, panel shown"
    double value = 0;
    std::optional<double> bar; ///< the greatest value that is good; none: just to know
    std::optional<Comparison> times; ///< that the value is the ratio of

    bool isMissed() const { return bar && !(value <= *bar); }
};

/// Prints figures as they come and remembers them.
class Report
{
public:
    enum Form { Table, Goals };

    explicit Report(Form form)
        : m_form(form)
    { }

    void add(const Figure &figure);
    void addRatio(const QString &goal, const QString &name, const Comparison &times, double bar);

    bool isMissed() const { return m_isMissed; } ///< one of the figures is
    bool writeJson(const QString &fileName) const; ///< false when that cannot be done

private:
    const Form m_form;
    bool m_isMissed = false;
    QJsonArray m_figures;
};

} // namespace Bench
