#include "svnclient.h"

#include <apr_general.h>
#include <svn_auth.h>
#include <svn_config.h>
#include <svn_dso.h>
#include <svn_error.h>
#include <svn_hash.h>
#include <svn_pools.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <map>
#include <mutex>

namespace hbrc::host {

namespace {

void InitialiseLibraryOnce()
{
    static std::once_flag once;
    std::call_once(once, [] {
        if (apr_initialize() != APR_SUCCESS)
            std::abort();
        std::atexit(apr_terminate);
        svn_error_clear(svn_dso_initialize2());
    });
}

svn_error_t* CheckCancel(void* baton)
{
    const auto* cancel = *static_cast<const revision::CancelCheck* const*>(baton);
    if (cancel && *cancel && (*cancel)())
        return svn_error_create(SVN_ERR_CANCELLED, nullptr, "The operation was cancelled");
    return SVN_NO_ERROR;
}

bool HasCause(const svn_error_t* err, std::initializer_list<apr_status_t> causes)
{
    for (const svn_error_t* e = err; e; e = e->child)
        for (apr_status_t cause : causes)
            if (e->apr_err == cause)
                return true;
    return false;
}

bool IsUnreachable(const svn_error_t* err)
{
    for (const svn_error_t* e = err; e; e = e->child)
        if (APR_STATUS_IS_ECONNREFUSED(e->apr_err) || APR_STATUS_IS_ECONNRESET(e->apr_err) ||
            APR_STATUS_IS_EPIPE(e->apr_err) || APR_STATUS_IS_TIMEUP(e->apr_err) || APR_STATUS_IS_ETIMEDOUT(e->apr_err))
            return true;
    return HasCause(err, {SVN_ERR_RA_CANNOT_CREATE_SESSION, SVN_ERR_RA_SVN_CONNECTION_CLOSED,
                          SVN_ERR_RA_SVN_IO_ERROR, SVN_ERR_RA_SVN_MALFORMED_DATA, SVN_ERR_RA_DAV_REQUEST_FAILED,
                          SVN_ERR_RA_DAV_CONN_TIMEOUT, SVN_ERR_RA_LOCAL_REPOS_OPEN_FAILED,
                          SVN_ERR_RA_LOCAL_REPOS_NOT_FOUND, SVN_ERR_RA_SVN_REPOS_NOT_FOUND});
}

}  // namespace

SvnPool::SvnPool(apr_pool_t* parent)
{
    InitialiseLibraryOnce();
    m_pool = svn_pool_create(parent);
}

SvnPool::~SvnPool()
{
    svn_pool_destroy(m_pool);
}

SvnClient::SvnClient(std::chrono::seconds httpTimeout)
{
    apr_hash_t* config = apr_hash_make(m_pool.get());
    for (const char* category : {SVN_CONFIG_CATEGORY_CONFIG, SVN_CONFIG_CATEGORY_SERVERS}) {
        svn_config_t* empty = nullptr;
        svn_error_clear(svn_config_create2(&empty, FALSE, FALSE, m_pool.get()));
        svn_hash_sets(config, category, empty);
    }
    // An http(s) server that stops answering ends the operation (-34) instead of holding it.
    svn_config_set(static_cast<svn_config_t*>(svn_hash_gets(config, SVN_CONFIG_CATEGORY_SERVERS)),
                   SVN_CONFIG_SECTION_GLOBAL, SVN_CONFIG_OPTION_HTTP_TIMEOUT,
                   std::to_string(std::max<std::chrono::seconds::rep>(1, httpTimeout.count())).c_str());
    svn_error_clear(svn_client_create_context2(&m_context, config, m_pool.get()));

    // The credential cache's providers, as the svn command-line client has them: the account's
    // password, else the one cached for its user; the user name alone for file:// repositories.
    m_context->cancel_baton = apr_palloc(m_pool.get(), sizeof(revision::CancelCheck*));
    *static_cast<const revision::CancelCheck**>(m_context->cancel_baton) = nullptr;
    apr_array_header_t* providers = apr_array_make(m_pool.get(), 2, sizeof(svn_auth_provider_object_t*));
    svn_auth_provider_object_t* provider = nullptr;
    svn_auth_get_simple_provider2(&provider, nullptr, nullptr, m_pool.get());
    APR_ARRAY_PUSH(providers, svn_auth_provider_object_t*) = provider;
    svn_auth_get_username_provider(&provider, m_pool.get());
    APR_ARRAY_PUSH(providers, svn_auth_provider_object_t*) = provider;
    svn_auth_open(&m_context->auth_baton, providers, m_pool.get());
    m_context->cancel_func = CheckCancel;
    use(nullptr, nullptr);
}

void SvnClient::use(const SvnCredentials* credentials, const revision::CancelCheck* cancel)
{
    // The parameters point into credentials, which outlive the operations that use them.
    svn_auth_baton_t* auth = m_context->auth_baton;
    svn_auth_set_parameter(auth, SVN_AUTH_PARAM_DEFAULT_USERNAME, credentials ? credentials->user.c_str() : nullptr);
    svn_auth_set_parameter(auth, SVN_AUTH_PARAM_DEFAULT_PASSWORD,
                           credentials && !credentials->password.empty() ? credentials->password.c_str() : nullptr);
    // Nothing is written to the cache unless the account asks to be kept, not even its user name.
    svn_auth_set_parameter(auth, SVN_AUTH_PARAM_NO_AUTH_CACHE, credentials && credentials->keep ? nullptr : "");
    *static_cast<const revision::CancelCheck**>(m_context->cancel_baton) = cancel;
    // The library keeps the credentials it was given for a realm; a new account must be asked again.
    svn_error_clear(svn_auth_forget_credentials(auth, nullptr, nullptr, m_pool.get()));
}

apr_array_header_t* SvnClient::pathArray(const std::vector<std::string>& paths, apr_pool_t* pool)
{
    apr_array_header_t* array = apr_array_make(pool, static_cast<int>(paths.size()), sizeof(const char*));
    for (const std::string& path : paths)
        APR_ARRAY_PUSH(array, const char*) = apr_pstrdup(pool, path.c_str());
    return array;
}

namespace {

// The start of the realm of every credential cached for a repository: "<scheme://host:port>".
std::string RealmOf(const std::string& url)
{
    const std::size_t schemeEnd = url.find("://");
    if (schemeEnd == std::string::npos)
        return {};
    const std::string scheme = url.substr(0, schemeEnd);
    std::string authority = url.substr(schemeEnd + 3, url.find('/', schemeEnd + 3) - (schemeEnd + 3));
    authority.erase(0, authority.find('@') + 1);  // a user name in the URL is not part of the realm
    if (authority.find(':') == std::string::npos) {
        static const std::map<std::string, const char*> kDefaultPorts{{"svn", "3690"}, {"http", "80"}, {"https", "443"}};
        const auto port = kDefaultPorts.find(scheme);
        if (port == kDefaultPorts.end())
            return {};
        authority += std::string(":") + port->second;
    }
    return "<" + scheme + "://" + authority + ">";
}

struct KeptPassword
{
    std::string realm;
    std::string user;
};

svn_error_t* ForgetMatching(svn_boolean_t* forget, void* baton, const char* kind, const char* realm, apr_hash_t* hash,
                            apr_pool_t* /*pool*/)
{
    const auto* kept = static_cast<const KeptPassword*>(baton);
    const auto* user = static_cast<const svn_string_t*>(svn_hash_gets(hash, SVN_CONFIG_AUTHN_USERNAME_KEY));
    *forget = std::strcmp(kind, SVN_AUTH_CRED_SIMPLE) == 0 && user && kept->user == user->data &&
              std::string(realm).rfind(kept->realm, 0) == 0;
    return SVN_NO_ERROR;
}

}  // namespace

void SvnForgetKeptPassword(const std::string& url, const std::string& user)
{
    KeptPassword kept{RealmOf(url), user};
    if (kept.realm.empty())
        return;
    SvnPool pool;
    svn_error_clear(svn_config_walk_auth_data(nullptr, ForgetMatching, &kept, pool.get()));
}

bool SvnIsAuthenticationFailure(const svn_error_t* err)
{
    return HasCause(err, {SVN_ERR_RA_NOT_AUTHORIZED, SVN_ERR_AUTHN_FAILED, SVN_ERR_AUTHN_CREDS_UNAVAILABLE,
                          SVN_ERR_AUTHN_CREDS_NOT_SAVED, SVN_ERR_AUTHN_NO_PROVIDER});
}

std::string SvnUnreachableText(const std::string& url, const std::string& why)
{
    return "Cannot reach the Subversion server at '" + url + "': " + why;
}

revision::Result SvnResult(svn_error_t* err, const std::string& url)
{
    if (!err)
        return {};
    std::string text;
    std::array<char, 512> buffer{};
    for (const svn_error_t* e = svn_error_purge_tracing(err); e; e = e->child) {
        const char* message = e->message ? e->message : svn_strerror(e->apr_err, buffer.data(), buffer.size());
        if (text.find(message) == std::string::npos)
            text += (text.empty() ? "" : "\n") + std::string(message);
    }
    revision::Result result{revision::code::Failed, text};
    if (HasCause(err, {SVN_ERR_CANCELLED})) {
        result.code = revision::code::Cancelled;
    } else if (SvnIsAuthenticationFailure(err)) {
        result = {revision::code::SessionUnusable,
                  "The Subversion server at '" + url + "' refused the session's credentials; please log in again.\n" + text};
    } else if (IsUnreachable(err)) {
        result = {revision::code::SessionUnusable, SvnUnreachableText(url, text)};
    }
    svn_error_clear(err);
    return result;
}

}  // namespace hbrc::host
