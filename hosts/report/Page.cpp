#include "hosts/report/Page.h"

#include "hosts/report/Assets.h"
#include "hosts/report/Markup.h"
#include "hosts/report/Packing.h"

#include <stdexcept>

namespace report {

namespace {

std::string PolicyOf(const Page &page) {
    std::string digests;
    for (const Script &script : page.scripts)
        digests += " '" + PolicyDigest(script.text) + '\'';
    return "default-src 'none'; script-src" + (digests.empty() ? " 'none'" : digests) +
           "; style-src 'unsafe-inline'; img-src data: blob:; base-uri 'none'; form-action 'none'";
}

std::string ScriptElement(const Script &script) {
    // Behind "<!--" a "<script" would keep the element from ending.
    for (const char *markup : {"</script", "<script"})
        if (script.text.find(markup) != std::string::npos)
            throw std::invalid_argument(std::string("a script of the report holds ") + markup);
    return "<script>" + script.text + "</script>\n";
}

} // namespace

std::string HtmlOf(const Page &page) {
    std::string html = "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
                       "<meta http-equiv=\"Content-Security-Policy\" content=\"" +
                       PolicyOf(page) +
                       "\">\n<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
                       "<meta name=\"color-scheme\" content=\"light dark\">\n"
                       "<link rel=\"icon\" href=\"data:,\">\n<title>" +
                       Escaped(page.title) + "</title>\n<style>\n" + styleSheet +
                       "</style>\n</head>\n<body>\n" + page.body;
    for (const Script &script : page.scripts)
        if (!script.notices.empty())
            html += "<details class=\"notices\"><summary>Licences of the 3D view</summary><pre>" +
                    Escaped(script.notices) + "</pre></details>\n";
    html += "<script type=\"application/json\" id=\"data\">" + InScript(page.data) + "</script>\n";
    for (const Script &script : page.scripts)
        html += ScriptElement(script);
    return html + "</body>\n</html>\n";
}

} // namespace report
