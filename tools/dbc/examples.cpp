// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "self_description.h"

#include <sstream>
#include <string>
#include <vector>

namespace {

struct Examples
{
    const char* command;
    std::vector<const char*> lines;
};

const std::vector<Examples>& allExamples()
{
    static const std::vector<Examples> examples{
        {"find",
         {"dbc find shop.orders 'state=new' 'total>=10' --sort -total,name --limit 5",
          "dbc find shop.orders 'date>2023-01-01' 'name~/^can/i' --fields '{\"name\": 1}'",
          "dbc find shop.orders '{\"items.sku\": \"a1\"}' --pretty"}},
        {"count", {"dbc count shop.orders 'state=new'"}},
        {"distinct", {"dbc distinct shop.orders state 'total>=10'"}},
        {"insert",
         {"dbc insert shop.orders '{\"_id\": 1, \"state\": \"new\"}'", "dbc insert shop.orders <orders.json"}},
        {"update",
         {"dbc update shop.orders 'state=new' -d '{\"state\": \"paid\"}' --multi",
          "dbc update shop.orders '_id=1' -d '{\"$inc\": {\"version\": 1}}' --upsert",
          "dbc update shop.orders '_id=1' -d '{\"note\": \"\"}' -o unset"}},
        {"remove", {"dbc remove shop.orders 'state=void'", "dbc remove shop.orders --all"}},
        {"aggregate",
         {"dbc aggregate shop.orders '[{\"$group\": {\"_id\": \"$state\", \"sum\": {\"$sum\": \"$total\"}}}]'"}},
        {"export",
         {"dbc export shop.orders >orders.json", "dbc export shop.orders 'state=paid' -f paid.csv",
          "dbc export shop.orders -f orders.tsv --columns number,total:double,shop.city",
          "dbc export shop.orders | gzip >orders.gz"}},
        {"import",
         {"dbc import shop.orders -f orders.json", "dbc import shop.orders -f orders.csv --upsert number",
          "dbc import shop.orders --format csv --header name,total:double,when:date <rows",
          "dbc import shop.orders -f orders.json --resume 2000"}},
        {"ls", {"dbc ls", "dbc ls shop"}},
        {"indexes", {"dbc indexes shop.orders"}},
        {"index create",
         {"dbc index create shop.orders state,-date", "dbc index create shop.users mail --unique",
          "dbc index create shop.sessions seen --expire-after 3600"}},
        {"index drop", {"dbc index drop shop.orders state_1_date_-1"}},
        {"drop", {"dbc drop shop.orders", "dbc drop --database shop --yes"}},
        {"files put", {"dbc files put shop photo.jpg", "tar c folder | dbc files put shop - --name folder.tar"}},
        {"files get", {"dbc files get shop photo.jpg", "dbc files get shop folder.tar - | tar t"}},
        {"files ls", {"dbc files ls shop"}},
        {"files rm", {"dbc files rm shop photo.jpg", "dbc files rm shop --partial"}},
        {"users add", {"dbc users add shop ada --role readWrite --role read@archive"}},
        {"users passwd", {"dbc users passwd shop ada --new-password-file secret"}},
        {"users update", {"dbc users update shop ada --role read"}},
        {"users rm", {"dbc users rm shop ada"}},
        {"users ls", {"dbc users ls shop"}},
        {"check", {"dbc check shop.orders"}},
        {"schema", {"dbc schema shop.orders", "dbc schema shop.orders 'state=new' --sample 0"}},
        {"doctor", {"dbc --uri 'mongodb://one.example,two.example/?replicaSet=shop' doctor"}},
        {"help", {"dbc help files put"}}};
    return examples;
}

// Turns off the line breaks that CLI11 2.5 and later put into the end of the help, because an example must be one line
// that can be copied. Older versions have no such function.
template <typename Formatter>
auto keepLines(Formatter& formatter, int) -> decltype(formatter.enable_footer_formatting(false))
{
    formatter.enable_footer_formatting(false);
}

template <typename Formatter>
void keepLines(Formatter&, long)
{}

} // namespace

void addExamples(CLI::App& program)
{
    keepLines(*program.get_formatter(), 0);
    for (const auto& [command, lines] : allExamples())
    {
        CLI::App* app = &program;
        std::istringstream words(command);
        for (std::string word; words >> word;)
            app = app->get_subcommand(word);
        std::string text = "Examples:";
        for (const char* line : lines)
            text.append("\n  ").append(line);
        app->footer(text);
    }
}
