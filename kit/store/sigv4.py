"""AWS signature version 4, for the requests that tests and demo send themselves."""
import datetime
import hashlib
import hmac
from urllib.parse import quote

ALGORITHM = "AWS4-HMAC-SHA256"


def signing_key(secret, day, region):
    key = ("AWS4" + secret).encode()
    for part in (day, region, "s3", "aws4_request"):
        key = hmac.new(key, part.encode(), hashlib.sha256).digest()
    return key


def signed_headers(method, host, path, query, body, access_key, secret_key, region="us-east-1"):
    """The headers that authorise the request; query is a dictionary, path is not yet percent-encoded."""
    time = datetime.datetime.now(datetime.timezone.utc).strftime("%Y%m%dT%H%M%SZ")
    digest = hashlib.sha256(body).hexdigest()
    headers = {"host": host, "x-amz-content-sha256": digest, "x-amz-date": time}
    names = ";".join(sorted(headers))
    canonical_query = "&".join(f"{quote(k, safe='')}={quote(v, safe='')}" for k, v in sorted(query.items()))
    canonical_headers = "".join(f"{name}:{headers[name]}\n" for name in sorted(headers))
    canonical = "\n".join((method, quote(path), canonical_query, canonical_headers, names, digest))
    scope = f"{time[:8]}/{region}/s3/aws4_request"
    to_sign = "\n".join((ALGORITHM, time, scope, hashlib.sha256(canonical.encode()).hexdigest()))
    signature = hmac.new(signing_key(secret_key, time[:8], region), to_sign.encode(), hashlib.sha256).hexdigest()
    headers["authorization"] = (
        f"{ALGORITHM} Credential={access_key}/{scope}, SignedHeaders={names}, Signature={signature}")
    return headers
