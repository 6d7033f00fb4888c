"""Runs package clients (npm, pip, cargo): again where that may help, with the system's certificates, and with messages
that name the true cause of a failure."""

import os
import re
import sys
import time

# Pauses in seconds before each further attempt.
PAUSES = (3, 10)
# The system's certificates on Debian, Fedora, openSUSE and Alpine.
BUNDLES = ("/etc/ssl/certs/ca-certificates.crt", "/etc/pki/tls/certs/ca-bundle.crt", "/etc/ssl/ca-bundle.pem", "/etc/ssl/cert.pem")
# For clients that bring their own certificates and do not read the system's: the variable that names more certificates,
# and other variables by which the user may have chosen some. A client's settings file has precedence over all of these.
CERTIFICATES = {"NODE_EXTRA_CA_CERTS": (), "REQUESTS_CA_BUNDLE": ("CURL_CA_BUNDLE",)}
OWN_CERTIFICATE = {"npm": "NODE_EXTRA_CA_CERTS", "pip": "PIP_CERT", "cargo": "CARGO_HTTP_CAINFO",
                   "mvn": "-Djavax.net.ssl.trustStore in MAVEN_OPTS"}

# Causes by what a client prints: (pattern, whether another attempt may help, what to do).
CAUSES = (
    (r"SELF_SIGNED_CERT|UNABLE_TO_(GET_ISSUER_CERT|VERIFY_LEAF)|CERT_HAS_EXPIRED|CERTIFICATE_VERIFY_FAILED|SSL certificate|"
     r"certificate verify failed", False,
     "{client} does not trust the certificate of the server that answers; some networks sign connections themselves. Add that "
     "network's certificate to the system's (Debian: as NAME.crt in /usr/local/share/ca-certificates, then "
     "update-ca-certificates), or name its file in {variable} or in {client}'s settings"),
    (r"EINTEGRITY|DO NOT MATCH THE HASHES|checksum for .* changed", False,
     "what arrived is not what is pinned. Check which registry or mirror {client} uses, and which proxies are in between"),
    (r"ENOSPC|No space left", False, "the disk is full; free some space"),
    (r"ENOTFOUND|EAI_AGAIN|ECONN|ETIMEDOUT|ENETUNREACH|EHOSTUNREACH|Max retries exceeded|NewConnectionError|ProxyError|timed out|"
     r"Could(n't| not) (resolve|connect)|spurious network error|network failure", True,
     "the registry cannot be reached. Check the network, the proxy (HTTPS_PROXY), and the registry that {client} uses"),
    (r"\bE40[134]\b|No matching distribution|no matching package", False,
     "the registry that {client} uses does not provide it. Correct {client}'s setting"),
)
UNKNOWN = (None, True, "see what {client} printed")
# Lines of a client that say nothing about a failure.
NOISE = re.compile(r"^\s*$|complete log of this run|^npm (warn|WARN|notice)")


class Failure(Exception):
    """Shown to the user without a traceback."""


def certificates(environment):
    """Variables to add to an environment, so that clients read the system's certificates. What is set is left alone."""
    bundle = next((path for path in BUNDLES if os.path.exists(path)), None)
    return {name: bundle for name, others in CERTIFICATES.items()
            if bundle and not any(environment.get(key) for key in (name,) + others)}


def cause(text):
    """The entry of CAUSES for what a client printed."""
    return next((known for known in CAUSES if re.search(known[0], text)), UNKNOWN)


def relevant(text, most=15):
    """The last lines that a client printed about the failure, each once."""
    lines = [line.rstrip() for line in text.splitlines() if not NOISE.search(line)]
    return "\n".join("  " + line for line in list(dict.fromkeys(lines))[-most:])


def fetch(client, what, start, pauses=None):
    """Says what is fetched and runs the client by start(variables to add), which returns a subprocess.CompletedProcess with
    everything that was printed as text in stdout. If it fails it is run again after a pause, where that may help. Raises
    Failure, which says what could not be fetched, what to do, and what the client printed."""
    print("fetch: %s, with %s" % (what, client), file=sys.stderr, flush=True)
    for pause in tuple(PAUSES if pauses is None else pauses) + (None,):
        run = start(certificates(os.environ))
        if run.returncode == 0:
            return
        _, again, remedy = cause(run.stdout)
        if pause is None or not again:
            break
        print("fetch: %s could not fetch %s; trying again in %d s" % (client, what, pause), file=sys.stderr, flush=True)
        time.sleep(pause)
    raise Failure("%s could not be fetched: %s. %s printed:\n%s" % (
        what, remedy.format(client=client, variable=OWN_CERTIFICATE[client]), client, relevant(run.stdout)))
