#pragma once

#include <string>
#include <vector>

namespace report {

/// A script of the page, which runs in the order given.
struct Script {
    std::string text;
    std::string notices; ///< of whoever holds rights to it; empty for our own
};

/// What a page is made of; its parts are HTML.
struct Page {
    std::string title; ///< plain text
    std::string body;
    std::string data; ///< JSON, for the scripts
    std::vector<Script> scripts;
};

/// The page as one file, which asks no other one for anything: a policy in its head forbids every request,
/// and every script but its own. Throws std::invalid_argument for a script that holds "</script" or
/// "<script".
std::string HtmlOf(const Page &page);

} // namespace report
