// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Chapter "users": adds a user, logs in as this user, changes the password
// and removes the user, on a server with authentication.
#include "tour.h"

#include "driver.h"

#include <dbc/connection_string.h>

#include <stdexcept>

namespace tour {

namespace {

constexpr const char* userName = "traveller";

// The administrator's connection string with the new user, who belongs to the
// database of the tour.
std::string uriFor(const Tour& tour, const std::string& password)
{
    const std::string& uri = tour.options.authUri;
    const std::size_t scheme = uri.find("://");
    const std::size_t begin = scheme == std::string::npos ? 0 : scheme + 3;
    const std::size_t at = uri.find('@', begin);
    const std::size_t host = at == std::string::npos ? begin : at + 1;
    const std::size_t end = uri.find_first_of("/?", host);
    return uri.substr(0, begin) + userName + ":" +
           dbc::percentEncoded(password) + "@" +
           uri.substr(host, end - host) + "/" + tour.database;
}

// connect() sends nothing: the first operation fails if the password is
// wrong.
std::string logIn(const Tour& tour, const std::string& password)
{
    //! [log_in]
    DataBaseClient client;
    client.connect(uriFor(tour, password));
    //! [log_in]
    return answer([&] {
        //! [log_in]
        dbc::Results found;
        client.read(tour.database, "visits", ObjectProperties(), found);
        //! [log_in]
    });
}

void mustBe(const std::string& said, bool accepted)
{
    show(said);
    if ((said == "accepted") != accepted)
    {
        throw std::runtime_error(std::string("the server should have ") +
                                 (accepted ? "accepted" : "refused") +
                                 " that");
    }
}

void tryPassword(const Tour& tour, const std::string& what,
                 const std::string& password, bool accepted)
{
    Step step(what, "log_in");
    const std::string said = logIn(tour, password);
    step.done(1, "log-ins");
    mustBe(said, accepted);
}

ObjectProperties rolesIn(const std::string& database)
{
    // A list with the keys 0, 1, 2 ...
    //! [roles]
    ObjectProperties roles =
        dbc::document({{"0", {{"role", "readWrite"}, {"db", database}}}});
    //! [roles]
    return roles;
}

// Writes and reads one document as the new user.
void work(const Tour& tour, const std::string& password)
{
    DataBaseClient client;
    client.connect(uriFor(tour, password));
    Step step("write and read a document as this user", "work");
    //! [work]
    const ObjectProperties visit = dbc::document({{"place", "Andorra"}});
    client.write(tour.database, "visits", visit);
    dbc::Results found;
    client.read(tour.database, "visits", visit, found);
    //! [work]
    step.done(found.size(), "documents", 2);
    agree("visits", found.size(), 1);
    show(toJson(found.front()));
}

/// Removes the user also if the chapter fails: dropping a database does not
/// remove its users.
class AddedUser
{
public:
    AddedUser(DataBaseClient& administrator, const std::string& database)
        : m_administrator(administrator), m_database(database)
    {}
    AddedUser(const AddedUser&) = delete;
    AddedUser& operator=(const AddedUser&) = delete;
    ~AddedUser()
    {
        if (!m_removed)
            answer([&] { m_administrator.removeUser(m_database, userName); });
    }
    void remove()
    {
        m_removed = true;
        //! [remove_user]
        m_administrator.removeUser(m_database, userName);
        //! [remove_user]
    }

private:
    DataBaseClient& m_administrator;
    const std::string m_database;
    bool m_removed = false;
};

AddedUser add(const Tour& tour, DataBaseClient& administrator,
              const std::string& password)
{
    Step step("add a user with a role and custom data", "add_user");
    //! [add_user]
    const ObjectProperties customData = dbc::document({{"purpose", "tour"}});
    administrator.addUser(tour.database, userName, password,
                          rolesIn(tour.database), customData);
    //! [add_user]
    step.done(1, "users");
    return AddedUser(administrator, tour.database);
}

void change(const Tour& tour, DataBaseClient& administrator,
            const std::string& password)
{
    Step step("change the password", "change_password");
    //! [change_password]
    administrator.changeUserPassword(tour.database, userName, password);
    //! [change_password]
    step.done(1, "users");
}

void giveRoles(const Tour& tour, DataBaseClient& administrator)
{
    const ObjectProperties customData =
        dbc::document({{"purpose", "second visit"}});
    Step step("replace the roles and the custom data", "update_user");
    showCode("roles");
    const std::string said = answer([&] {
        //! [update_user]
        administrator.updateUser(tour.database, userName,
                                 rolesIn(tour.database), customData);
        //! [update_user]
    });
    step.done(1, "users");
    showShort(said);
    if (said != "accepted")
    {
        // FerretDB v1 rejects roles, so the gateway removes them.
        note("this server stores neither roles nor custom data of users");
    }
}

} // namespace

void users(Tour& tour)
{
    title("users");
    DataBaseClient administrator;
    connect(administrator, tour.options.authUri, tour.database);
    const std::string first = administrator.createId();
    const std::string second = administrator.createId();

    AddedUser user = add(tour, administrator, first);
    OwnDatabase visits(tour.options.authUri, tour.database);
    tryPassword(tour, "log in", first, true);
    work(tour, first);
    tryPassword(tour, "log in with a wrong password", second, false);
    change(tour, administrator, second);
    tryPassword(tour, "log in with the old password", first, false);
    tryPassword(tour, "log in with the new password", second, true);
    giveRoles(tour, administrator);

    Step step("remove the user", "remove_user");
    user.remove();
    step.done(1, "users");
    tryPassword(tour, "log in once more", second, false);
    visits.drop();
}

} // namespace tour
