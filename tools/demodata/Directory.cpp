#include "tools/demodata/Directory.h"

#include <stdexcept>
#include <utility>

#include "tools/directoryd/Ldif.h"

namespace demodata {

namespace {

using directoryd::Attribute;

class Tree {
  public:
    // Adds cn=<cn> below a parent, whose name is empty for the root; answers the new name.
    std::string Add(const std::string& cn, const std::string& parent,
                    std::vector<Attribute> attributes, const std::string& guid = "") {
        const std::string rdn = directoryd::MakeRdn("cn", cn).text;
        std::string dn = parent.empty() ? rdn : rdn + "," + parent;
        attributes.push_back({"GUID", guid.empty() ? MakeGuid("directory/" + dn) : guid});
        const directoryd::Result result = tree_.Add(dn, std::move(attributes), /*given=*/true);
        if (result != directoryd::Result::kSuccess)
            throw std::runtime_error(dn + " does not fit into the directory");
        return dn;
    }
    std::string AddContainer(const std::string& cn, const std::string& parent = "") {
        return Add(cn, parent, {{"objectclass", "Container"}});
    }
    bool Has(const std::string& dn) const { return tree_.Find(dn) != nullptr; }
    const directoryd::Directory& tree() const { return tree_; }

  private:
    directoryd::Directory tree_;
};

// People and departments of different companies share names, so each company has a branch.
void AddCompanies(const std::vector<Company>& companies, Tree& tree) {
    const std::string all = tree.AddContainer("Companies");
    const std::string departments = tree.AddContainer("Departments");
    const std::string users = tree.AddContainer("Users");
    for (const Company& c : companies) {
        const std::string customer = std::to_string(c.id);
        const auto member = [&](const char* type, const std::string& number) {
            return std::vector<Attribute>{{"objectclass", type},
                                          {"telephoneNumber", number},
                                          {"_company", c.guid},
                                          {"customerid", customer}};
        };
        tree.Add(c.name, all, {{"objectclass", "Company"}, {"customerid", customer}}, c.guid);
        const std::string itsDepartments = tree.AddContainer(c.name, departments);
        for (const Department& d : c.departments)
            tree.Add(d.name, itsDepartments, member("Department", d.number), d.guid);
        const std::string itsUsers = tree.AddContainer(c.name, users);
        for (const Person& p : c.people)
            tree.Add(p.name, itsUsers, member("User", p.number), p.guid);
    }
}

// The state lamps of the queues.
void AddLamps(const std::vector<Company>& companies, Tree& tree) {
    const std::string lamps = tree.AddContainer("Blf");
    for (const Company& c : companies) {
        const std::string branch = tree.AddContainer(c.name, lamps);
        for (const Department& d : c.departments)
            if (d.queue)
                tree.Add(d.number, branch,
                         {{"number", d.number},
                          {"type", "qs"},
                          {"status", "2"},
                          {"status2", "1"},
                          {"status3", "0"},
                          {"status4", "0"}});
    }
}

void AddGroups(Tree& tree) {
    const std::string groups = tree.AddContainer("TrunkGroups");
    for (const char* name : {"Public network", "Tie lines"})
        tree.Add(name, groups, {{"objectclass", "TrunkGroup"}});
    tree.AddContainer("Groups");
}

void AddModules(const std::vector<Company>& companies, Tree& tree) {
    const std::string modules = tree.AddContainer("Modules");
    tree.Add("Manager", modules,
             {{"objectclass", "AdministrationModule"},
              {"moduletype", "Manager"},
              {"ipAddress", "10.20.0.2"}});
    int host = 10;
    for (const Company& c : companies)
        for (const Trunk& t : c.trunks) {
            // Several customers use one trunk.
            if (tree.Has(t.dn)) continue;
            std::vector<directoryd::Rdn> parts;
            if (!directoryd::ParseName(t.dn, parts) || parts.size() != 3)
                throw std::runtime_error(t.dn + " is no trunk of a module");
            const std::string module =
                directoryd::MakeRdn("cn", parts[1].value).text + "," + modules;
            if (!tree.Has(module)) {
                const std::string number = std::to_string(++host);
                tree.Add(parts[1].value, modules,
                         {{"objectclass", "Module"},
                          {"moduletype", "Gateway"},
                          {"ipAddress", "10.20.0." + number},
                          {"publicIPAddress", "192.0.2." + number},
                          {"H323Address", "10.20.0." + number + ":1720"}});
            }
            tree.Add(parts[0].value, module,
                     {{"objectclass", "Trunk"},
                      {"description", t.description},
                      {"trunkGroup", t.internal ? "Tie lines" : "Public network"}});
        }
    const std::string ports = tree.AddContainer("VoicemailPorts");
    for (const char* number : {"1", "2", "3", "4"})
        tree.Add(std::string("Port ") + number, ports,
                 {{"objectclass", "VoicemailPort"}, {"ipAddress", "10.20.0.30"}});
}

void AddLeastCostPlans(Tree& tree) {
    const std::string plans = tree.AddContainer("LeastCostCallPlans");
    const std::string between = tree.AddContainer("Trunk2Trunk", plans);
    for (const char* prefix : {"00", "01", "020", "07", "08"})
        tree.Add(prefix, between, {{"objectclass", "LCREntry"}});
}

}  // namespace

void WriteDirectory(const std::vector<Company>& companies, const std::string& folder) {
    Tree tree;
    AddCompanies(companies, tree);
    AddLamps(companies, tree);
    AddGroups(tree);
    AddModules(companies, tree);
    AddLeastCostPlans(tree);
    directoryd::WriteLdif(folder + "/directory.ldif", tree.tree());
}

}  // namespace demodata
