#!/bin/sh
export PATH=/bin:/sbin:/usr/bin:/usr/sbin
export BRAND=Velmora
export MODEL=VC-F3104
export Administrator=admin
export WEB_PORT=80
export ONVIF_DIR=/usr/apache/htdocs/onvif
