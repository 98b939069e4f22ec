"""Dates and times: values of VR DA, TM and DT as Python's types."""

from __future__ import annotations

import datetime
import re

_DATE = re.compile(r"(\d{4})(\.?)(\d\d)\2(\d\d)")
_TIME = re.compile(r"(\d\d)(?:(:?)(\d\d)(?:\2(\d\d)(?:\.(\d{1,6}))?)?)?")
_OFFSET = re.compile(r"[+-]\d{4}$")
_DATE_OF_DATE_TIME = re.compile(r"\d{4}(?:\d\d)?(?:\d\d)?")


def date_of(text: str) -> datetime.date:
    """ "20240229", or "2024.02.29" as it was once written. ValueError for what is no date."""
    match = _DATE.fullmatch(text.strip(" "))
    if match is None:
        raise ValueError(f"not a date: {text!r}")
    return datetime.date(int(match[1]), int(match[3]), int(match[4]))


def time_of(text: str) -> datetime.time:
    """ "142530.25", what is missing at the end being zero; "14:25:30" as it was once written."""
    match = _TIME.fullmatch(text.strip(" "))
    if match is None:
        raise ValueError(f"not a time: {text!r}")
    # Python knows no leap seconds.
    seconds = min(int(match[4] or 0), 59) if match[4] == "60" else int(match[4] or 0)
    return datetime.time(int(match[1]), int(match[3] or 0), seconds,
                         int((match[5] or "").ljust(6, "0")))


def date_time_of(text: str) -> datetime.datetime:
    """ "20240229142530.25+0100", what is missing behind the year being its first. The result knows
    its time zone when the text has an offset from UTC."""
    text = text.strip(" ")
    zone = None
    offset = _OFFSET.search(text)
    if offset is not None and len(text) > 5:
        text = text[: offset.start()]
        minutes = int(offset[0][1:3]) * 60 + int(offset[0][3:])
        zone = datetime.timezone(datetime.timedelta(minutes=-minutes if offset[0][0] == "-"
                                                    else minutes))
    match = _DATE_OF_DATE_TIME.match(text)
    if match is None:
        raise ValueError(f"not a date and time: {text!r}")
    date = date_of(match[0] + "0101"[len(match[0]) - 4 :])
    time = time_of(text[match.end() :]) if len(text) > match.end() else datetime.time()
    return datetime.datetime.combine(date, time, zone)


def text_of_date(date: datetime.date) -> str:
    """As DA has it."""
    return f"{date.year:04}{date.month:02}{date.day:02}"


def text_of_time(time: datetime.time) -> str:
    """As TM has it."""
    text = f"{time.hour:02}{time.minute:02}{time.second:02}"
    return f"{text}.{time.microsecond:06}" if time.microsecond else text


def text_of_date_time(moment: datetime.datetime) -> str:
    """As DT has it."""
    text = text_of_date(moment) + text_of_time(moment.time())
    offset = moment.utcoffset()
    if offset is None:
        return text
    minutes = round(offset.total_seconds() / 60)
    sign = "-" if minutes < 0 else "+"
    return f"{text}{sign}{abs(minutes) // 60:02}{abs(minutes) % 60:02}"
