// SPDX-License-Identifier: MIT
#include "markupfilter.h"

#include "renderlimits.h"
#include "svgnumbers.h"
#include "svgtree.h"

#include <QRegularExpression>
#include <QSet>

#include <algorithm>
#include <cmath>

namespace {

// Only what a board draws; "use", patterns and animation are left out with
// scripts because they repeat or change the drawing beyond the page's text.
const QSet<QString> &drawnElements()
{
    static const QSet<QString> names = {
        QStringLiteral("svg"), QStringLiteral("g"), QStringLiteral("defs"), QStringLiteral("title"),
        QStringLiteral("desc"), QStringLiteral("rect"), QStringLiteral("circle"), QStringLiteral("ellipse"),
        QStringLiteral("line"), QStringLiteral("polyline"), QStringLiteral("polygon"), QStringLiteral("path"),
        QStringLiteral("text"), QStringLiteral("tspan"), QStringLiteral("textArea"), QStringLiteral("tbreak"),
        QStringLiteral("image"), QStringLiteral("linearGradient"), QStringLiteral("radialGradient"),
        QStringLiteral("stop"), QStringLiteral("solidColor"), QStringLiteral("style")};
    return names;
}

const QSet<QString> &geometryAttributes()
{
    static const QSet<QString> names = {
        QStringLiteral("x"), QStringLiteral("y"), QStringLiteral("width"), QStringLiteral("height"),
        QStringLiteral("x1"), QStringLiteral("y1"), QStringLiteral("x2"), QStringLiteral("y2"),
        QStringLiteral("cx"), QStringLiteral("cy"), QStringLiteral("r"), QStringLiteral("rx"),
        QStringLiteral("ry"), QStringLiteral("points"), QStringLiteral("d"), QStringLiteral("transform"),
        QStringLiteral("stroke-width"), QStringLiteral("font-size"), QStringLiteral("stroke-dasharray"),
        QStringLiteral("stroke-dashoffset"), QStringLiteral("bound"), QStringLiteral("viewBox")};
    return names;
}

// A reference to anything but a fragment of the page itself.
bool reachesOutside(const QString &value)
{
    static const QRegularExpression outsideUrl(QStringLiteral("url\\s*\\(\\s*['\"]?\\s*[^#'\"\\s]"),
                                               QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression import(QStringLiteral("@import"), QRegularExpression::CaseInsensitiveOption);
    return outsideUrl.match(value).hasMatch() || import.match(value).hasMatch();
}

bool isHref(const QString &name)
{
    return name == QLatin1String("href") || name == QLatin1String("xlink:href");
}

} // namespace

bool MarkupFilter::isDrawable(const SvgNode &element)
{
    if (!drawnElements().contains(element.name))
        return false;
    for (const QXmlStreamAttribute &attribute : element.attributes) {
        const QString name = attribute.qualifiedName().toString();
        const QString value = attribute.value().toString();
        if (value.size() > RenderLimits::current().value && !isHref(name))
            return false;
        if (geometryAttributes().contains(name) && !isSaneGeometry(value))
            return false;
    }
    if (element.name == QLatin1String("style")) {
        for (const SvgNode &child : element.children) {
            if (reachesOutside(child.text))
                return false;
        }
    }
    return true;
}

bool MarkupFilter::keepsAttribute(const QString &name, const QString &value)
{
    // Image references are resolved by the adapter itself; the board's
    // markers are drawn as shapes of their own.
    if (isHref(name) || name.startsWith(QLatin1String("marker")) || name.startsWith(QLatin1String("on")))
        return false;
    if (name == QLatin1String("xmlns") || name.contains(QLatin1Char(':')))
        return name.startsWith(QLatin1String("xml:"));
    return !reachesOutside(value);
}

bool MarkupFilter::keepsText(const QString &text)
{
    return text.size() <= RenderLimits::current().text;
}

bool MarkupFilter::isSaneGeometry(const QString &value)
{
    static const QRegularExpression notANumber(QStringLiteral("\\b(?:inf|infinity|nan)\\b"),
                                               QRegularExpression::CaseInsensitiveOption);
    if (notANumber.match(value).hasMatch())
        return false;
    const QList<double> numbers = SvgNumbers::parse(value);
    const double largest = RenderLimits::current().coordinate;
    return std::all_of(numbers.begin(), numbers.end(),
                       [largest](double number) { return std::isfinite(number) && std::fabs(number) <= largest; });
}
