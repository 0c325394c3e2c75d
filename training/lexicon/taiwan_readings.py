"""Readings of Mandarin as spoken in Taiwan, where they differ from the mainland's, and the words
that need a hand. Compiled for this project from common knowledge of both standards. Traditional and
simplified spellings stand side by side."""

# Characters, the mainland's reading, Taiwan's. In words it replaces the mainland's reading only.
CHARACTERS = """
    期 qi1 qi2
    企 qi3 qi4
    究 jiu1 jiu4
    擊击 ji1 ji2
    績绩跡迹 ji4 ji1
    緝缉 ji1 qi4
    寂 ji4 ji2
    質质 zhi4 zhi2
    識识 shi2 shi4
    播 bo1 bo4
    髮 fa4 fa3
    发 fa4 fa3
    微薇 wei1 wei2
    巍 wei1 wei2
    危 wei1 wei2
    偽伪 wei3 wei4
    叔淑 shu1 shu2
    息惜昔熄 xi1 xi2
    夕汐 xi1 xi4
    突凸 tu1 tu2
    帆 fan1 fan2
    俄 e2 e4
    液腋 ye4 yi4
    儲储 chu3 chu2
    跌 die1 die2
    擁拥 yong1 yong3
    暫暂 zan4 zhan4
    綜综 zong1 zong4
    框 kuang4 kuang1
    眶 kuang4 kuang1
    攜携 xie2 xi1
    夾夹 jia1 jia2
    諷讽 feng3 feng4
    頗颇 po1 po3
    樸朴 pu3 pu2
    曝 bao4 pu4
    堤 di1 ti2
    血 xue4 xie3
    紊 wen3 wen4
    蹈 dao3 dao4
    檔档 dang4 dang3
    酪 lao4 luo4
    烙 lao4 luo4
    鞠 ju1 ju2
    卓 zhuo1 zhuo2
    剝剥 bao1 bo1
    薄 bao2 bo2
    嚼 jiao2 jue2
    淆 xiao2 yao2
    曳 ye4 yi4
    誼谊 yi4 yi2
    擲掷 zhi4 zhi2
    廈厦 sha4 xia4
    穴 xue2 xue4
    馴驯 xun4 xun2
    踝 huai2 huai2
    怯 qie4 que4
    菌 jun1 jun4
    悄 qiao1 qiao3
    蝸蜗 wo1 gua1
    曙 shu3 shu4
    崖 ya2 yai2
    綏绥 sui2 sui1
    迄 qi4 qi4
    混 hun2 hun4
    矽 xi1 xi4
"""

# Characters alone, with all their readings in order: the first is the canonical one.
ALONE = """
    和 he2 han4
    的 de5
    地 di4 de5
    得 de2 dei3
    了 le5 liao3
    著着 zhe5 zhao2 zhu4
    嗎吗 ma5
    呢 ne5 ni2
    吧 ba5
    啊 a5
    嘛 ma5
    啦 la5
    們们 men5
    子 zi3
    個个 ge4
    麼么 me5
    一 yi1
    不 bu4
    〇 ling2
    誰谁 shei2 shui2
    還还 hai2 huan2
    都 dou1 du1
    說说 shuo1 shui4
    長长 chang2 zhang3
    重 zhong4 chong2
    行 xing2 hang2
    樂乐 le4 yue4
    覺觉 jue2 jiao4
    會会 hui4 kuai4
    角 jiao3 jue2
    露 lu4 lou4
    熟 shou2 shu2
    崖 ya2 yai2
    落 luo4 la4
    給给 gei3 ji3
    要 yao4
    為为 wei4
    只 zhi3
    那 na4
    哪 na3
    這这 zhe4
    好 hao3
    過过 guo4
    看 kan4
    難难 nan2
    教 jiao1
"""

# Words whose readings no rule above gives.
WORDS = """
    垃圾 le4 se4
    垃圾桶 le4 se4 tong3
    垃圾車 le4 se4 che1
    什麼 甚麼 什么 she2 me5
    為什麼 为什么 wei4 she2 me5
    沒什麼 没什么 mei2 she2 me5
    說服 说服 shui4 fu2
    頭髮 头发 tou2 fa3
    法國 法国 fa4 guo2
    法國人 法国人 fa4 guo2 ren2
    法文 fa4 wen2
    法語 法语 fa4 yu3
    法郎 fa4 lang2
    暴露 pu4 lu4
    人質 人质 ren2 zhi4
    主角 zhu3 jiao3
    配角 pei4 jiao3
    角色 jiao3 se4
    女主角 nv3 zhu3 jiao3
    男主角 nan2 zhu3 jiao3
    參與 参与 can1 yu4
    模樣 模样 mo2 yang4
    提防 ti2 fang2
    秘魯 秘鲁 bi4 lu3
    剝削 剥削 bo1 xue4
    削減 削减 xue4 jian3
    削弱 xue4 ruo4
    似的 si4 de5
    懸崖 悬崖 xuan2 yai2
    便宜 pian2 yi2
    漂亮 piao4 liang4
    東西 东西 dong1 xi1
    朋友 peng2 you3
    先生 xian1 sheng1
    太太 tai4 tai4
    謝謝 谢谢 xie4 xie5
    我的 wo3 de5
    你的 ni3 de5
    他的 ta1 de5
    她的 ta1 de5
    地方 di4 fang1
    玫瑰 mei2 gui1
    早上 zao3 shang4
    晚上 wan3 shang4
    知識 知识 zhi1 shi4
    認識 认识 ren4 shi4
    質量 质量 zhi2 liang4
    再見 再见 zai4 jian4
    你好 ni3 hao3
    您好 nin2 hao3
    天氣 天气 tian1 qi4
    葡萄 pu2 tao2
    蘿蔔 萝卜 luo2 bo5
    下載 下载 xia4 zai4
    薄荷 bo4 he2
    給予 给予 ji3 yu3
    供給 供给 gong1 ji3
    長大 长大 zhang3 da4
    好像 hao3 xiang4
    行為 行为 xing2 wei2
    因為 因为 yin1 wei4
    以為 以为 yi3 wei2
    認為 认为 ren4 wei2
    成為 成为 cheng2 wei2
    音樂 音乐 yin1 yue4
    銀行 银行 yin2 hang2
    睡覺 睡觉 shui4 jiao4
    覺得 觉得 jue2 de5
    落後 落后 luo4 hou4
    乾淨 干净 gan1 jing4
    研究所 yan2 jiu4 suo3
"""

# Characters that may be neutral in a word, where the source says they are.
NEUTRAL = set("的地得了嗎吗子們们個个麼么著着呢吧啊嘛啦呀喔")

# Doubled words for kin: the second half is neutral.
KIN = set("爸媽妈哥姐姊弟妹爺爷奶叔伯舅姑婆公嬸婶")
