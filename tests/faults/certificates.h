// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "scratch_folder.h"

#include <cstdlib>
#include <map>
#include <stdexcept>
#include <string>

namespace test_support {

/// Creates certificates with the openssl program. The destructor removes them. The constructor creates two certificate
/// authorities: "right" signs every server certificate, "wrong" signs no certificate.
class Certificates
{
public:
    Certificates()
    {
        makeSelfSigned("right");
        makeSelfSigned("wrong");
    }

    std::string certificate(const std::string& name) const { return m_folder.path(name + ".pem"); }
    std::string key(const std::string& name) const { return m_folder.path(name + ".key"); }
    std::string staple(const std::string& name) const { return m_folder.path(name + ".ocsp"); }

    void makeSelfSigned(const std::string& name) const
    {
        run("req -x509 -days 2 -subj /CN=" + name + newKey(name) + " -out " + name + ".pem");
    }

    /// Creates a certificate with a unique serial number.
    /// @param address     "IP:127.0.0.1" or "DNS:name"
    /// @param extensions  more lines of the extensions file
    void makeServer(const std::string& name, const std::string& address, const std::string& extensions = "")
    {
        m_serials[name] = std::to_string(1000 + m_serials.size());
        m_folder.write(name + ".ext", "subjectAltName=" + address + '\n' + extensions + '\n');
        run("req -subj /CN=" + name + newKey(name) + " -out " + name + ".csr");
        run("x509 -req -days 2 -set_serial 0x" + m_serials[name] + " -in " + name +
            ".csr -CA right.pem -CAkey right.key"
            " -extfile " +
            name + ".ext -out " + name + ".pem");
    }

    /// Creates the OCSP response of "right" for a certificate of makeServer().
    void makeStaple(const std::string& name, bool isRevoked) const
    {
        const std::string& serial = m_serials.at(name);
        m_folder.write(name + ".index", (isRevoked ? "R\t400101000000Z\t200101000000Z\t" : "V\t400101000000Z\t\t") +
                                            serial + "\tunknown\t/CN=" + name + '\n');
        run("ocsp -index " + name +
            ".index -CA right.pem -rsigner right.pem -rkey right.key -issuer right.pem"
            " -serial 0x" +
            serial + " -noverify -ndays 2 -respout " + name + ".ocsp");
    }

private:
    static std::string newKey(const std::string& name)
    {
        return " -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes -keyout " + name + ".key";
    }

    void run(const std::string& arguments) const
    {
        const std::string command = "cd '" + m_folder.path() + "' && openssl " + arguments + " >log 2>&1";
        if (std::system(command.c_str()) != 0)
            throw std::runtime_error("openssl " + arguments);
    }

    ScratchFolder m_folder;
    std::map<std::string, std::string> m_serials; // hexadecimal
};

} // namespace test_support
