// SPDX-License-Identifier: MIT
#include "webindex.h"

#include <QUrl>

namespace {

const char kStyle[] = R"(
body { margin: 0; font-family: sans-serif; background: #eceff1; color: #212121; }
header { display: flex; align-items: center; gap: 1em; padding: .5em 1em; background: #37474f; color: #fff; }
header h1 { font-size: 1.1em; margin: 0; flex: 1; }
header button { font-size: 1.2em; min-width: 2.5em; }
main { padding: 1em; }
.page { margin: 0 auto 2em; }
.page h2 { font-size: 1.1em; margin: .3em 0; }
.sheet { position: relative; box-shadow: 0 1px 4px rgba(0,0,0,.4); background: #fff; }
.sheet img { display: block; width: 100%; height: auto; }
.sheet p { position: absolute; margin: 0; color: transparent; overflow: hidden; font-size: 16px; }
.js .page { display: none; }
.js .page.current { display: block; }
nav.strip { display: flex; gap: .5em; overflow-x: auto; padding: .5em 1em; background: #cfd8dc; }
nav.strip a { flex: none; text-align: center; color: inherit; text-decoration: none; font-size: .8em; }
nav.strip img { display: block; height: 90px; background: #fff; border: 2px solid transparent; }
nav.strip a.current img { border-color: #1e88e5; }
.bare header, .bare nav.strip, .bare .page h2, .bare .media { display: none; }
.bare main { padding: 0; }
.bare .page { margin: 0; }
.bare .sheet { box-shadow: none; }
)";

// Without script every page shows in order; with it one page at a time.
const char kScript[] = R"(
(function () {
  var root = document.documentElement;
  var pages = document.querySelectorAll('.page');
  var links = document.querySelectorAll('nav.strip a');
  var where = document.getElementById('where');
  var current = 0;
  root.classList.add('js');
  if (location.search.indexOf('bare') >= 0) root.classList.add('bare');
  function show(index) {
    if (index < 0 || index >= pages.length) return;
    pages[current].classList.remove('current');
    links[current].classList.remove('current');
    current = index;
    pages[current].classList.add('current');
    links[current].classList.add('current');
    where.textContent = (current + 1) + ' / ' + pages.length;
    if (location.hash !== '#page-' + (current + 1)) history.replaceState(null, '', '#page-' + (current + 1));
  }
  function fromHash() {
    var match = /^#page-(\d+)$/.exec(location.hash);
    show(match ? Number(match[1]) - 1 : 0);
  }
  document.getElementById('prev').onclick = function () { show(current - 1); };
  document.getElementById('next').onclick = function () { show(current + 1); };
  document.addEventListener('keydown', function (event) {
    if (event.key === 'ArrowLeft' || event.key === 'PageUp') show(current - 1);
    else if (event.key === 'ArrowRight' || event.key === 'PageDown') show(current + 1);
    else if (event.key === 'Home') show(0);
    else if (event.key === 'End') show(pages.length - 1);
    else return;
    event.preventDefault();
  });
  window.addEventListener('hashchange', fromHash);
  pages[0].classList.add('current');
  links[0].classList.add('current');
  fromHash();
})();
)";

QString escaped(const QString &text)
{
    return text.toHtmlEscaped();
}

// A relative file name as a link: "#", "?" and "%" in a name stay part of it.
QString url(const QString &file)
{
    return QString::fromLatin1(QUrl::toPercentEncoding(file, "/"));
}

QString percent(double part, double whole)
{
    return QString::number(whole > 0 ? 100.0 * part / whole : 0.0, 'f', 3) + QLatin1Char('%');
}

} // namespace

QByteArray WebIndex::html(const QString &lessonName, const QList<WebPageModel> &pages)
{
    QString body;
    for (int index = 0; index < pages.size(); ++index)
        body += page(pages.at(index), index + 1);
    const QString html = QStringLiteral(
        "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
        "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
        "<title>%1</title>\n<style>%2</style>\n</head>\n<body>\n"
        "<header>\n<h1>%1</h1>\n"
        "<button id=\"prev\" type=\"button\" aria-label=\"Previous page\">&#8592;</button>\n"
        "<span id=\"where\" aria-live=\"polite\">%3 page(s)</span>\n"
        "<button id=\"next\" type=\"button\" aria-label=\"Next page\">&#8594;</button>\n</header>\n"
        "%4<main>\n%5</main>\n<script>%6</script>\n</body>\n</html>\n")
        .arg(escaped(lessonName), QString::fromLatin1(kStyle))
        .arg(pages.size())
        .arg(thumbnails(pages), body, QString::fromLatin1(kScript));
    return html.toUtf8();
}

QString WebIndex::page(const WebPageModel &model, int number)
{
    const QString title = model.title.isEmpty() ? QStringLiteral("Page %1").arg(number) : model.title;
    return QStringLiteral("<section class=\"page\" id=\"page-%1\" aria-labelledby=\"title-%1\" style=\"max-width: %2px\">\n"
                          "<h2 id=\"title-%1\">%3</h2>\n"
                          "<div class=\"sheet\">\n<img src=\"%4\" width=\"%2\" height=\"%5\" alt=\"\">\n%6</div>\n%7"
                          "</section>\n")
        .arg(number).arg(model.size.width())
        .arg(escaped(title), escaped(model.picture))
        .arg(model.size.height())
        .arg(texts(model), media(model));
}

QString WebIndex::texts(const WebPageModel &model)
{
    // Transparent words over the picture: the picture shows them, a screen
    // reader and the browser's search find them where they stand.
    QString result;
    const QSizeF size(model.size);
    for (const WebText &text : model.texts) {
        result += QStringLiteral("<p style=\"left: %1; top: %2; width: %3; height: %4\">%5</p>\n")
                      .arg(percent(text.bound.x(), size.width()), percent(text.bound.y(), size.height()),
                           percent(text.bound.width(), size.width()), percent(text.bound.height(), size.height()),
                           escaped(text.text));
    }
    return result;
}

QString WebIndex::media(const WebPageModel &model)
{
    if (model.media.isEmpty())
        return QString();
    QString result = QStringLiteral("<ul class=\"media\" aria-label=\"Media of this page\">\n");
    for (const QString &file : model.media)
        result += QStringLiteral("<li><a href=\"%1\">%2</a></li>\n").arg(url(file), escaped(file));
    return result + QStringLiteral("</ul>\n");
}

QString WebIndex::thumbnails(const QList<WebPageModel> &pages)
{
    QString result = QStringLiteral("<nav class=\"strip\" aria-label=\"Pages\">\n");
    for (int index = 0; index < pages.size(); ++index) {
        result += QStringLiteral("<a href=\"#page-%1\"><img src=\"%2\" alt=\"\" loading=\"lazy\">%1</a>\n")
                      .arg(index + 1)
                      .arg(escaped(pages.at(index).picture));
    }
    return result + QStringLiteral("</nav>\n");
}
