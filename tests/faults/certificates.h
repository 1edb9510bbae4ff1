// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include <stdlib.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
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
        std::string directory = (std::filesystem::temp_directory_path() / "database_client-tls.XXXXXX").string();
        if (!mkdtemp(directory.data()))
            throw std::runtime_error("no directory for certificates");
        m_directory = directory;
        makeSelfSigned("right");
        makeSelfSigned("wrong");
    }
    ~Certificates()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_directory, ignored);
    }
    Certificates(const Certificates&) = delete;
    Certificates& operator=(const Certificates&) = delete;

    std::string certificate(const std::string& name) const { return m_directory + "/" + name + ".pem"; }
    std::string key(const std::string& name) const { return m_directory + "/" + name + ".key"; }
    std::string staple(const std::string& name) const { return m_directory + "/" + name + ".ocsp"; }

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
        std::ofstream(m_directory + "/" + name + ".ext") << "subjectAltName=" << address << '\n' << extensions << '\n';
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
        std::ofstream(m_directory + "/" + name + ".index")
            << (isRevoked ? "R\t400101000000Z\t200101000000Z\t" : "V\t400101000000Z\t\t") << serial
            << "\tunknown\t/CN=" << name << '\n';
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
        const std::string command = "cd '" + m_directory + "' && openssl " + arguments + " >log 2>&1";
        if (std::system(command.c_str()) != 0)
            throw std::runtime_error("openssl " + arguments);
    }

    std::string m_directory;
    std::map<std::string, std::string> m_serials; // hexadecimal digits
};

} // namespace test_support
