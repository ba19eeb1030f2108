#!/bin/sh
# Stands for the instrument's script: the serial number of the settings file becomes the host name.
echo "update_hostname.sh $*" >> /run/rig/stubs.log
sed -n 's/^Serial=//p' /root/TAVO_QR9/TAVO_QR9.ini > /etc/hostname
