#pragma once

#include <hbrcservices/revisiontypes.h>

#include <apr_pools.h>
#include <svn_client.h>

#include <chrono>
#include <string>
#include <vector>

namespace hbrc::host {

// An APR memory pool that lives as long as this object.
class SvnPool
{
public:
    explicit SvnPool(apr_pool_t* parent = nullptr);
    ~SvnPool();
    SvnPool(const SvnPool&) = delete;
    SvnPool& operator=(const SvnPool&) = delete;

    apr_pool_t* get() const { return m_pool; }

private:
    apr_pool_t* m_pool = nullptr;
};

// The account of a session, handed to the server when it asks. An empty password means the one
// the client library's credential cache holds for the user, if any; keep puts the password into
// that cache once the server has accepted it.
struct SvnCredentials
{
    std::string user;
    std::string password;
    bool keep = false;
};

// One Subversion client context: its configuration (empty: no option is read from the user's
// configuration folder) and the credentials and cancel check of the operation in progress.
// Authentication never prompts and never retries, so that a refused password ends the operation at
// once. It uses the client library's credential cache in the standard configuration folder
// (~/.subversion/auth) as the svn command-line client does: a password cached there serves an
// account given without one, and only an account that asks to be kept is written to it.
class SvnClient
{
public:
    // httpTimeout: how long a read from an http(s) server waits for an answer.
    explicit SvnClient(std::chrono::seconds httpTimeout);
    SvnClient(const SvnClient&) = delete;
    SvnClient& operator=(const SvnClient&) = delete;

    svn_client_ctx_t* context() const { return m_context; }
    apr_pool_t* pool() const { return m_pool.get(); }

    // The account and cancel check that the next operations use; both must outlive them.
    void use(const SvnCredentials* credentials, const revision::CancelCheck* cancel);

    // Paths as the client library takes them, allocated in pool.
    static apr_array_header_t* pathArray(const std::vector<std::string>& paths, apr_pool_t* pool);

private:
    SvnPool m_pool;
    svn_client_ctx_t* m_context = nullptr;
};

// The outcome of a client-library call on the repository at url: success, or a failure whose code
// says whether the session is unusable (server unreachable, connection lost, credentials refused:
// -34, with a text that says which), the caller cancelled, or the request was refused. Clears err.
revision::Result SvnResult(svn_error_t* err, const std::string& url);
// The text of a failure to reach the Subversion server at url, for the reason why.
std::string SvnUnreachableText(const std::string& url, const std::string& why);
// Removes the password cached for user on the repository at url from the credential cache.
void SvnForgetKeptPassword(const std::string& url, const std::string& user);
// True when err (or one of its causes) says that the server refused the credentials.
bool SvnIsAuthenticationFailure(const svn_error_t* err);

}  // namespace hbrc::host
