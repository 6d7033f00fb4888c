"""How package clients (npm, pip, cargo) are run: again where that may help, with the system's certificates, and with the true
cause of a failure in what the user reads."""

import os
import re
import sys
import time

# Pauses in seconds before each further attempt.
PAUSES = (3, 10)
# The system's certificates on Debian, Fedora, openSUSE and Alpine.
BUNDLES = ("/etc/ssl/certs/ca-certificates.crt", "/etc/pki/tls/certs/ca-bundle.crt", "/etc/ssl/ca-bundle.pem", "/etc/ssl/cert.pem")
# Clients that bring certificates of their own and do not read the system's: the variable that adds them, and others by which
# the user may have said which to take. Their settings files win over these.
CERTIFICATES = {"NODE_EXTRA_CA_CERTS": (), "REQUESTS_CA_BUNDLE": ("CURL_CA_BUNDLE",)}
OWN_CERTIFICATE = {"npm": "NODE_EXTRA_CA_CERTS", "pip": "PIP_CERT", "cargo": "CARGO_HTTP_CAINFO"}

# What a client's words show: (pattern, whether another attempt may help, what to do).
CAUSES = (
    (r"SELF_SIGNED_CERT|UNABLE_TO_(GET_ISSUER_CERT|VERIFY_LEAF)|CERT_HAS_EXPIRED|CERTIFICATE_VERIFY_FAILED|SSL certificate|"
     r"certificate verify failed", False,
     "{client} does not trust the certificate of what answers, as where a network signs connections by itself. Add that "
     "network's certificate to the system's (Debian: as NAME.crt in /usr/local/share/ca-certificates, then "
     "update-ca-certificates), or name its file in {variable} or {client}'s settings"),
    (r"EINTEGRITY|DO NOT MATCH THE HASHES|checksum for .* changed", False,
     "what came is not what is pinned. See which registry or mirror {client} is set to, and what stands before it"),
    (r"ENOSPC|No space left", False, "the disk is full; make room"),
    (r"ENOTFOUND|EAI_AGAIN|ECONN|ETIMEDOUT|ENETUNREACH|EHOSTUNREACH|Max retries exceeded|NewConnectionError|ProxyError|timed out|"
     r"Could(n't| not) (resolve|connect)|spurious network error|network failure", True,
     "the registry cannot be reached. See to the network, to the proxy (HTTPS_PROXY), and to the registry that {client} is set to"),
    (r"\bE40[134]\b|No matching distribution|no matching package", False,
     "the registry that {client} is set to does not give it out. Correct that setting"),
)
UNKNOWN = (None, True, "see what {client} says")
# Lines of a client that tell nothing about a failure.
NOISE = re.compile(r"^\s*$|complete log of this run|^npm (warn|WARN|notice)")


class Failure(Exception):
    """Told to the user without a trace."""


def certificates(environment):
    """What to add to an environment: the system's certificates for clients that do not read them, where nothing is set."""
    bundle = next((path for path in BUNDLES if os.path.exists(path)), None)
    return {name: bundle for name, others in CERTIFICATES.items()
            if bundle and not any(environment.get(key) for key in (name,) + others)}


def cause(text):
    """What CAUSES has for a client's words."""
    return next((known for known in CAUSES if re.search(known[0], text)), UNKNOWN)


def relevant(text, most=15):
    """The last lines of a client's words that tell of the failure, each once."""
    lines = [line.rstrip() for line in text.splitlines() if not NOISE.search(line)]
    return "\n".join("  " + line for line in list(dict.fromkeys(lines))[-most:])


def fetch(client, what, start, pauses=None):
    """Says what is fetched and runs start(variables to add) -> subprocess.CompletedProcess with all it printed as text in stdout. What fails is run
    again after a pause where that may help; Failure says what could not be fetched, what to do, and what the client said."""
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
    raise Failure("%s could not be fetched: %s. %s said:\n%s" % (
        what, remedy.format(client=client, variable=OWN_CERTIFICATE[client]), client, relevant(run.stdout)))
