# Sourced by scripts/package.sh: signs Windows images and installer packages with osslsigncode.
# shellcheck shell=bash disable=SC2154 # variables of build.sh

# Prints the messages of the last openssl or osslsigncode, indented.
signing_log() { sed 's/^/  /' "$build/signing.log" >&2; }

# The path of a file that the caller named relative to the folder of the call.
in_caller_folder() { (cd "$caller" && realpath -ms -- "$1"); }

# check_signing CERTIFICATE KEY: fails unless the key signs for the certificate, which is for code and
# valid now. Both are files in PEM format; intermediate certificates follow the first.
check_signing() {
  local certificate=$1 key=$2 file public
  for file in "$certificate" "$key"; do
    [[ -f $file && -r $file ]] || fail "cannot read '$file': no such file, or no permission"
  done
  openssl x509 -in "$certificate" -noout 2>/dev/null ||
    fail "'$certificate' is not a certificate in PEM format"
  # An empty password: openssl does not ask for one.
  public=$(openssl pkey -in "$key" -passin pass: -pubout 2>/dev/null) ||
    fail "'$key' is not a private key in PEM format, or it is encrypted:" \
      "decrypt it with 'openssl pkey -in FILE -out FILE'"
  [[ $public == "$(openssl x509 -in "$certificate" -noout -pubkey)" ]] ||
    fail "the key '$key' does not belong to the certificate '$certificate'"
  openssl x509 -in "$certificate" -noout -ext extendedKeyUsage 2>/dev/null | grep -q 'Code Signing' ||
    fail "the certificate '$certificate' is not for code signing: Windows rejects its signatures"
  openssl x509 -in "$certificate" -noout -checkend 0 >/dev/null ||
    fail "the certificate '$certificate' has expired: $(openssl x509 -in "$certificate" -noout -enddate)"
}

# sign_files CERTIFICATE KEY TIMESTAMP FILE…: signs files in place. TIMESTAMP is the address of a
# time-stamp authority (RFC 3161), or empty: the signatures then end with the certificate.
sign_files() {
  local certificate=$1 key=$2 timestamp=${3:+-ts $3} file options
  read -ra options <<<"$timestamp"
  for file in "${@:4}"; do
    step "Signing $(basename "$file")"
    osslsigncode sign -h sha256 -certs "$certificate" -key "$key" -n "quenra" "${options[@]}" \
      -in "$file" -out "$file.signed" >"$build/signing.log" 2>&1 || {
      rm -f "$file.signed"
      signing_log
      fail "signing '$file' failed"
    }
    # Keeps the permissions.
    cat "$file.signed" >"$file"
    rm "$file.signed"
  done
}
