#!/usr/bin/env bash
# What a studio could write instead of the agent: compresses the files, names them together by their MD5 and sends them.
#
#   bench/road.sh FOLDER WORK BUCKET-URL KEY:SECRET
set -euo pipefail
folder=$1 work=$2 bucket=$3 user=$4

mkdir -p "$work/files"
for file in "$folder"/*; do
    gzip -9 -c "$file" >"$work/files/${file##*/}.gz"
done
tar -cf "$work/package" -C "$work/files" .
key=$(md5sum <"$work/package" | cut -c 1-32)
curl --fail --silent --show-error --aws-sigv4 aws:amz:us-east-1:s3 --user "$user" \
    --header 'x-amz-content-sha256: UNSIGNED-PAYLOAD' --upload-file "$work/package" "$bucket/$key"
rm -r "$work"
