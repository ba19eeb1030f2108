"""The unit gets its serial number, and with it its host name."""

TITLE = "Serial number"
LIMIT = 30  # seconds: the script has so long
PARTS = {"lineEdit_SERIAL_MODEL": "tv9", "lineEdit_SERIAL_PREFIX": "07", "lineEdit_SERIAL_SUFFIX": "00042"}
SERIAL = "TV9-07-00042"  # the model is always in capitals


def run(day):
    day.hand.open_page("TAB_QC2")
    for field, text in PARTS.items():
        day.hand.enter(field, text)
    begin = len(day.room.program.log())
    day.hand.click("pushButton_SERIAL_WRITE")
    day.room.wait_log("Finish update_hostname", LIMIT, begin)
    day.screenshot("serial-number")
    day.table.same("serial number stored", SERIAL, day.setting("TAVO-QR9", "Serial"))
    day.table.same("host name", SERIAL, (day.room.rig / "root/etc/hostname").read_text().strip())
