#!/bin/sh
# Starts VerifierQR9 in the instrument's folder. The program finds the main application (TAVO_QR9.app) and the
# sensor's configuration (AR0134_Merel.cfg) by names relative to it.
set -eu
folder=/root/TAVO_QR9
program=$(dirname "$(readlink -f "$0")")/../lib/verifierqr9/VerifierQR9

if [ "$(id -u)" -ne 0 ]; then
    echo "verifierqr9: only root may reach the board, the camera and the sticks" >&2
    exit 1
fi
if ! cd "$folder"; then
    echo "verifierqr9: $folder is missing; it comes with the instrument's software" >&2
    exit 1
fi
# The instrument's update_hostname.sh may lie in its folder or anywhere in the path.
PATH=$PATH:$folder
export PATH
exec "$program"
