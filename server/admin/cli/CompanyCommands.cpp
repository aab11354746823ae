#include "server/admin/AdminDatabase.h"
#include "server/admin/Audit.h"
#include "server/admin/Companies.h"
#include "server/admin/FieldTexts.h"
#include "server/admin/cli/CommandParts.h"
#include "server/admin/cli/Commands.h"
#include "server/auth/Tokens.h"

namespace clockwell::server {

namespace {

constexpr std::size_t longestCode = 64; // as in the schema

struct CompanyOptions
{
    std::shared_ptr<AdminOptions> common;
    std::optional<std::string> name;
    std::optional<std::string> code;
};

Json companyJson(const Company &company)
{
    Json json;
    json["name"] = company.name;
    json["code"] = company.code;
    return json;
}

void list(const CompanyOptions &options)
{
    AdminDatabase database{options.common->database};
    const auto companies = database.database().read(listCompanies);
    Listing listing;
    listing.none = "No companies.";
    listing.header = {"NAME", "CODE"};
    listing.rows.reserve(companies.size());
    for (const Company &company : companies) {
        listing.rows.push_back({company.name, company.code});
        listing.objects.push_back(companyJson(company));
    }
    printListing(listing, options.common->json);
}

void add(const CompanyOptions &options)
{
    AdminDatabase database{options.common->database};
    const Company company{newId(), *options.name, *options.code};
    const Outcome outcome = database.write([&](Connection &connection) {
        const Audit audit{connection, options.common->as};
        Outcome done = addCompany(connection, company);
        if (done.changed)
            audit.add(
                {"companies add", company.name, company.id, std::nullopt, nullptr, companyJson(company)});
        return done;
    });
    printOutcome(outcome, "company", companyJson(company), options.common->json);
}

} // namespace

void addCompanyCommands(CLI::App &admin, const std::shared_ptr<AdminOptions> &options,
                        const ChooseCommand &choose)
{
    CLI::App *group = addGroup(admin, "companies", "List and add companies", " list");
    const auto own = std::make_shared<CompanyOptions>();
    own->common = options;
    addCommand(*group, "list", "List companies", "")->callback([=] { choose([=] { list(*own); }); });
    CLI::App *one = addCommand(*group, "add", "Add a company", " \"Sample Works\" --code SAMPLE");
    addField(
        *one, "NAME", "The company's name", own->name,
        [](const std::string &text) { return parseLine(text); }, lineRule)
        ->required();
    addField(
        *one, "--code", "What its people enter when they sign up, e.g. SAMPLE", own->code,
        [](const std::string &text) { return parseLine(text, longestCode); },
        "it has to be one line of at most 64 characters")
        ->required();
    one->callback([=] { choose([=] { add(*own); }); });
}

} // namespace clockwell::server
