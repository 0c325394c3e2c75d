"""Readings of common Japanese words that IPADIC's costs would put behind a rarer one, and of
numbers. The first is the canonical reading; IPADIC's others follow. Compiled for this project."""

WORDS = """
    は ワ ハ
    へ エ ヘ
    いい イー
    こんにちは コンニチワ
    こんばんは コンバンワ
    一日 イチニチ
    今日 キョー
    明日 アシタ アス
    昨日 キノー
    一昨日 オトトイ
    明後日 アサッテ
    今朝 ケサ
    今年 コトシ
    去年 キョネン
    日本 ニホン ニッポン
    中国 チューゴク
    私 ワタシ
    彼 カレ
    彼女 カノジョ
    何 ナニ
    何時 ナンジ
    何人 ナンニン
    人 ヒト
    一人 ヒトリ
    二人 フタリ
    大人 オトナ
    二十歳 ハタチ
    方 ホー カタ
    家 イエ ウチ
    年 ネン
    分 フン ブン
    歳 サイ
    点 テン
    回 カイ
    後 アト
    他 ホカ
    外 ソト
    下 シタ
    上 ウエ
    所 トコロ
    集 シュー
    金 カネ
    先 サキ
    風 カゼ
    水 ミズ
    空 ソラ
    町 マチ
    頭 アタマ
    体 カラダ
    声 コエ
    父 チチ
    母 ハハ
    兄 アニ
    姉 アネ
    妹 イモート
    弟 オトート
    朝 アサ
    昼 ヒル
    夜 ヨル
    間 アイダ
    上手 ジョーズ
    下手 ヘタ
    十分 ジューブン ジュップン
    市場 シジョー
    良い ヨイ
    行く イク ユク
    行っ イッ
    入る ハイル
    入り ハイリ
    入っ ハイッ
    出ろ デロ
    開く アク
    開い アイ
    降り オリ フリ
    降っ フッ
    怒っ オコッ
    辛い カライ ツライ
    止め トメ ヤメ
"""

UNITS = ["", "イチ", "ニ", "サン", "ヨン", "ゴ", "ロク", "ナナ", "ハチ", "キュー"]
TENS = ["", "ジュー", *(unit + "ジュー" for unit in UNITS[2:])]
HUNDREDS = ["", "ヒャク", "ニヒャク", "サンビャク", "ヨンヒャク", "ゴヒャク", "ロッピャク", "ナナヒャク",
            "ハッピャク", "キューヒャク"]
THOUSANDS = ["", "セン", "ニセン", "サンゼン", "ヨンセン", "ゴセン", "ロクセン", "ナナセン", "ハッセン",
             "キューセン"]
DIGITS = ["", *"一二三四五六七八九"]
HOURS = ["イチ", "ニ", "サン", "ヨ", "ゴ", "ロク", "シチ", "ハチ", "ク", "ジュー", "ジューイチ", "ジューニ"]
MONTHS = [*HOURS[:3], "シ", *HOURS[4:]]
DAYS = {2: "フツカ", 3: "ミッカ", 4: "ヨッカ", 5: "イツカ", 6: "ムイカ", 7: "ナノカ", 8: "ヨーカ", 9: "ココノカ",
        10: "トーカ", 14: "ジューヨッカ", 17: "ジューシチニチ", 19: "ジュークニチ", 20: "ハツカ",
        24: "ニジューヨッカ", 27: "ニジューシチニチ", 29: "ニジュークニチ"}


def numbers():
    """Kanji numbers below 100, whole hundreds and thousands, hours, months and days, with their
    readings."""
    found = {"一": ["イチ"], "四": ["ヨン", "シ"], "七": ["ナナ", "シチ"], "九": ["キュー", "ク"]}
    for i in range(1, 10):
        found.setdefault(DIGITS[i], [UNITS[i]])
        count = "" if i == 1 else DIGITS[i]
        found[count + "百"] = [HUNDREDS[i]]
        found[count + "千"] = [THOUSANDS[i]]
        for unit in range(10):
            found[count + "十" + DIGITS[unit]] = [TENS[i] + UNITS[unit]]
    for i, (hour, month) in enumerate(zip(HOURS, MONTHS), 1):
        count = DIGITS[i] if i < 10 else "十" + DIGITS[i - 10]
        found[count + "時"] = [hour + "ジ"]
        found[count + "月"] = [month + "ガツ"]
    for day in range(2, 32):
        tens, unit = divmod(day, 10)
        count = ("" if tens < 2 else DIGITS[tens]) + ("十" if tens else "") + DIGITS[unit]
        found[count + "日"] = [DAYS.get(day, TENS[tens] + UNITS[unit] + "ニチ")]
    return found


def table():
    """Words to their first readings; numbers have no others."""
    words = {}
    for line in WORDS.strip().splitlines():
        word, *readings = line.split()
        words[word] = readings
    return words
